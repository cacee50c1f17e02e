import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 200000
    for i in range(1, n + 1):
        print(f"line {i}\t{i * 3}\tend")


main()
