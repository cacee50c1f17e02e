import sys
from functools import cmp_to_key


def descending(a, b):
    return b - a


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 200000
    values = []
    seed = 42
    for i in range(n):
        seed = (seed * 16807) % 2147483647
        values.append(seed % 1000000)

    values.sort(key=cmp_to_key(descending))

    checksum = 0
    for i in range(0, len(values), 1000):
        checksum = (checksum * 31 + values[i]) % 1000003
    print(values[0], values[-1], checksum)


main()
