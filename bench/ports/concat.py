import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 120000
    length = 0
    for i in range(1, n + 1):
        length += len(";".join(["id", str(i), "name", str(i % 10), "end"]))
    items = [f"item{i}" for i in range(1, 1001)]
    for _ in range(n // 50):
        length += len(", ".join(items))
    print(length)


main()
