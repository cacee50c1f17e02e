import re
import sys

WORD = re.compile(r"[A-Za-z]+")


def is_empty(table):
    for _ in table:
        return False
    return True


def first_word(line):
    first = ""
    for match in WORD.finditer(line):
        first = match.group()
        break
    return first


def position(items, wanted):
    for i, item in enumerate(items, 1):
        if item == wanted:
            return i
    return 0


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 40000
    line, fields, items = "12: ", {}, []
    for i in range(1, 61):
        line += f"word{i} "
        fields[f"field{i}"] = i
        items.append(i * 3 % 61)

    empty = letters = positions = 0
    for i in range(1, n + 1):
        if is_empty(fields):
            empty += 1
        if is_empty({}):
            empty += 1
        letters += len(first_word(line))
        positions += position(items, i % 10 + 1)
    print(empty, letters, positions)


main()
