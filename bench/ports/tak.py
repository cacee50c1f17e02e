import sys


def tak(x, y, z):
    if y >= x:
        return z
    return tak(tak(x - 1, y, z), tak(y - 1, z, x), tak(z - 1, x, y))


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 40
    total = 0
    for _ in range(n):
        total += tak(18, 12, 6)
    print(total)


main()
