import sys


def walk(x, y, goal, heading, turns):
    if x > goal or y > goal or turns < 0:
        return 0
    if x == goal and y == goal:
        return 1
    if heading == 1:
        return walk(x + 1, y, goal, 1, turns) + walk(x, y + 1, goal, 2, turns - 1)
    return walk(x + 1, y, goal, 1, turns - 1) + walk(x, y + 1, goal, 2, turns)


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 12
    print(walk(0, 0, n, 1, 7), walk(0, 0, n, 2, 6))


main()
