import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 900000
    counts = {}
    seed = 42
    for i in range(n):
        seed = (seed * 3877 + 29573) % 139968
        word = "word" + str(seed % 5000)
        count = counts.get(word)
        if count is not None:
            counts[word] = count + 1
        else:
            counts[word] = 1

    distinct = most = letters = 0
    for word, count in counts.items():
        distinct += 1
        letters += len(word) * count
        if count > most:
            most = count
    print(distinct, most, letters)


main()
