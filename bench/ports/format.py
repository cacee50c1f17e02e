import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 300000
    names, length = ["first", "second", "third"], 0
    for i in range(1, n + 1):
        line = "%d: %s has %d of %d (%s)" % (i, names[i % 3], i % 77, n, "true" if i % 2 == 0 else "false")
        length += len(line)
    print(length)


main()
