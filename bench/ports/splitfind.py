import sys


def split(text, separator):
    fields, start = [], 0
    first = text.find(separator, start)
    while first >= 0:
        fields.append(text[start:first])
        start = first + len(separator)
        first = text.find(separator, start)
    fields.append(text[start:])
    return fields


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 60000
    seed, count, letters = 42, 0, 0
    for i in range(1, n + 1):
        seed = seed * 16807 % 2147483647
        fields = split(f"{i}, name{seed % 100}, {seed}, , true, last one", ", ")
        count += len(fields)
        letters += len(fields[1]) + len(fields[5])
    print(count, letters)


main()
