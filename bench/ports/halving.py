import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 30000
    longest = best = 0
    for start in range(1, n + 1):
        x, steps = start, 0
        while x != 1:
            if x % 2 == 0:
                x = x // 2
            else:
                x = 3 * x + 1
            steps += 1
        if steps > longest:
            longest = steps
            best = start
    print(best, longest)


main()
