import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 150000
    shapes = [
        lambda i: i,
        lambda i: n - i,
        lambda i: i if 2 * i < n else n - i,
        lambda i: 7,
        lambda i: i - 500 if i % 1000 == 0 else i,
    ]
    checksum = 0
    for value_at in shapes:
        items = [value_at(i) for i in range(1, n + 1)]
        items.sort()
        for i in range(0, n, 100):
            checksum = (checksum * 31 + items[i]) % 1000003
    print(checksum)


main()
