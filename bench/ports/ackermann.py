import sys


def ackermann(m, k):
    if m == 0:
        return k + 1
    if k == 0:
        return ackermann(m - 1, 1)
    return ackermann(m - 1, ackermann(m, k - 1))


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 250
    total = 0
    for _ in range(n):
        total += ackermann(2, 60)
    print(total)


main()
