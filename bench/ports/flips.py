import sys


class Search:
    def __init__(self, size):
        self.size = size
        self.order = list(range(1, size + 1))
        self.most = 0
        self.total = 0

    def visit(self, start):
        order = self.order
        if start == self.size:
            flips = flips_of(order)
            self.total += flips
            if flips > self.most:
                self.most = flips
            return
        for i in range(start, self.size):
            order[start], order[i] = order[i], order[start]
            self.visit(start + 1)
            order[start], order[i] = order[i], order[start]


def flips_of(order):
    items = order[:]
    flips, first = 0, items[0]
    while first != 1:
        low, high = 0, first - 1
        while low < high:
            items[low], items[high] = items[high], items[low]
            low += 1
            high -= 1
        flips += 1
        first = items[0]
    return flips


def main():
    search = Search(int(sys.argv[1]) if len(sys.argv) > 1 else 8)
    search.visit(0)
    print(search.most, search.total)


main()
