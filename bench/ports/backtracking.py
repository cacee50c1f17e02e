import sys

SIZE = 4
BOX_OF = [[0, 0, 1, 1], [0, 0, 1, 1], [2, 2, 3, 3], [2, 2, 3, 3]]


def new_flags():
    return [[False] * SIZE for _ in range(SIZE)]


rows, columns, boxes = new_flags(), new_flags(), new_flags()
steps = 0


def fill(row, column):
    global steps
    if column == SIZE:
        row, column = row + 1, 0
        if row == SIZE:
            return 1
    found = 0
    in_row, in_column, in_box = rows[row], columns[column], boxes[BOX_OF[row][column]]
    for symbol in range(SIZE):
        steps += 1
        if not in_row[symbol] and not in_column[symbol] and not in_box[symbol]:
            in_row[symbol] = True
            in_column[symbol] = True
            in_box[symbol] = True
            found += fill(row, column + 1)
            in_row[symbol] = False
            in_column[symbol] = False
            in_box[symbol] = False
    return found


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 60
    found = 0
    for _ in range(n):
        found += fill(0, 0)
    print(found, steps)


main()
