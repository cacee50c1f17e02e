import sys

WORDS = ["kitten", "sitting", "saturday", "sunday", "intention", "execution", "apple"]


def distance(a, b):
    previous = list(range(len(b) + 1))
    for i, letter in enumerate(a, 1):
        current = [i]
        for j in range(1, len(b) + 1):
            cost = 0 if b[j - 1] == letter else 1
            current.append(min(previous[j] + 1, current[j - 1] + 1, previous[j - 1] + cost))
        previous = current
    return previous[-1]


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 6000
    total = 0
    for i in range(1, n + 1):
        total += distance(WORDS[i % 7], WORDS[i % 5])
    print(total)


main()
