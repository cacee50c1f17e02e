import sys


def build(depth):
    if depth == 0:
        return [None, None]
    return [build(depth - 1), build(depth - 1)]


def count_nodes(tree):
    if tree[0] is not None:
        return 1 + count_nodes(tree[0]) + count_nodes(tree[1])
    return 1


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 10
    total = 0
    for round in range(n):
        total += count_nodes(build(15))
    print(total)


main()
