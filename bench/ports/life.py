import sys

SIZE = 64


def new_board():
    return [[0] * SIZE for _ in range(SIZE)]


def step(board, following):
    for y in range(1, SIZE - 1):
        above, row, below, target = board[y - 1], board[y], board[y + 1], following[y]
        for x in range(1, SIZE - 1):
            around = (above[x - 1] + above[x] + above[x + 1] + row[x - 1] + row[x + 1]
                      + below[x - 1] + below[x] + below[x + 1])
            if around == 3 or (around == 2 and row[x] == 1):
                target[x] = 1
            else:
                target[x] = 0


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 120
    board, following, seed = new_board(), new_board(), 42
    for y in range(1, SIZE - 1):
        for x in range(1, SIZE - 1):
            seed = seed * 16807 % 2147483647
            board[y][x] = seed // 1000 % 2
    for _ in range(n):
        step(board, following)
        board, following = following, board
    checksum = 0
    for row in board:
        for cell in row:
            checksum = (checksum * 2 + cell) % 1000003
    print(checksum)


main()
