import re
import sys

FIELD, WORD = re.compile(r"[^,]+"), re.compile(r"\S+")


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 60000
    seed, count, letters = 42, 0, 0
    for i in range(1, n + 1):
        seed = seed * 16807 % 2147483647
        fields = FIELD.findall(f"{i},name{seed % 100},{seed},true,last one")
        words = WORD.findall(f"  the {seed % 100} words of\ta line ")
        count += len(fields) + len(words)
        letters += len(fields[1]) + len(words[1])
    print(count, letters)


main()
