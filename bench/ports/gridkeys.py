import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 150
    cells, seed = {}, 42
    for i in range(1, n * n + 1):
        seed = seed * 16807 % 2147483647
        cells[f"{seed % n},{seed // n % n}"] = i % 9 + 1

    total = missing = 0
    for _ in range(10):
        for y in range(n):
            for x in range(n):
                cell = cells.get(f"{x},{y}")
                if cell:
                    total += cell
                else:
                    missing += 1
    print(total, missing)


main()
