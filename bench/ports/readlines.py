import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 300
    lines = length = longest = 0
    for _ in range(n):
        with open("bench/data/readings.txt") as file:
            for line in file:
                line = line.rstrip("\n")
                lines += 1
                length += len(line)
                if len(line) > longest:
                    longest = len(line)
    print(lines, length, longest)


main()
