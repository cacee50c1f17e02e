import sys


class Node:
    __slots__ = ("value", "rest")

    def __init__(self, value, rest):
        self.value = value
        self.rest = rest


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 100
    total = 0
    for _ in range(n):
        first = None
        for i in range(1, 5001):
            first = Node(i, first)
        backwards = None
        while first:
            rest = first.rest
            first.rest = backwards
            backwards = first
            first = rest
        node, place = backwards, 0
        while node:
            place += 1
            total = (total + node.value * place) % 1000003
            node = node.rest
    print(total)


main()
