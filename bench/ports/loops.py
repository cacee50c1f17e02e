import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 3000
    hits = above = rest = 0
    for i in range(1, n + 1):
        for j in range(1, n + 1):
            if (i * j) % 7 == 3:
                hits += 1
            elif i < j:
                above += 1
            else:
                rest += 1
    print(hits, above, rest)


main()
