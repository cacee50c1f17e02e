import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 300000
    numbers = []
    names = []
    seed = 42
    for i in range(n):
        seed = (seed * 16807) % 2147483647
        numbers.append(seed % 1000000)
    for i in range(n // 3):
        seed = (seed * 16807) % 2147483647
        names.append("name" + str(seed % 100000))

    numbers.sort()
    names.sort()

    checksum = 0
    for i in range(0, len(numbers), 1000):
        checksum = (checksum * 31 + numbers[i]) % 1000003
    for i in range(0, len(names), 1000):
        checksum = (checksum * 31 + len(names[i])) % 1000003
    print(numbers[0], numbers[-1], names[0], names[-1], names[n // 6 - 1], checksum)


main()
