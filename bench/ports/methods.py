import sys


class Plain:
    def __init__(self):
        self.total = 0

    def add(self, amount):
        self.total = self.total + amount

    def read(self):
        return self.total


class Wrapped:
    def __init__(self, limit):
        self.total = 0
        self.limit = limit

    def add(self, amount):
        total = self.total + amount
        if total >= self.limit:
            total -= self.limit
        self.total = total

    def read(self):
        return self.total


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 1000000
    plain = Plain()
    wrapped = Wrapped(997)
    sum = 0
    for i in range(n):
        plain.add(1)
        wrapped.add(7)
        sum += (plain.read() + wrapped.read()) % 3
    print(plain.read(), wrapped.read(), sum)


main()
