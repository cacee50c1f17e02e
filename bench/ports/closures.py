import sys


def new_counter(step):
    count = 0

    def counter():
        nonlocal count
        count = count + step
        return count

    return counter


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 1500000
    by_one, by_three = new_counter(1), new_counter(3)
    eighths = 0
    for i in range(n):
        if (by_one() + by_three()) % 8 == 0:
            eighths += 1

    total = 0
    for i in range(1, n // 6 + 1):
        counter = new_counter(i % 10)
        counter()
        counter()
        total += counter()
    print(by_one(), by_three(), eighths, total)


main()
