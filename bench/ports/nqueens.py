import sys


SIZE = 9


def clear_flags(count):
    flags = []
    for i in range(count + 1):
        flags.append(False)
    return flags


def place(row, columns, rising, falling):
    if row > SIZE:
        return 1
    found = 0
    for column in range(1, SIZE + 1):
        up = row + column
        down = row - column + SIZE
        if not (columns[column] or rising[up] or falling[down]):
            columns[column] = True
            rising[up] = True
            falling[down] = True
            found += place(row + 1, columns, rising, falling)
            columns[column] = False
            rising[up] = False
            falling[down] = False
    return found


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 20
    total = 0
    for round in range(n):
        total += place(1, clear_flags(SIZE), clear_flags(2 * SIZE), clear_flags(2 * SIZE))
    print(total)


main()
