import sys

checksum = orders = 0


def permute(items, start, size):
    global checksum, orders
    if start == size - 1:
        orders += 1
        checksum = (checksum * 3 + items[0] * items[size - 1]) % 1000003
        return
    for i in range(start, size):
        items[start], items[i] = items[i], items[start]
        permute(items, start + 1, size)
        items[start], items[i] = items[i], items[start]


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 9
    permute(list(range(1, n + 1)), 0, n)
    print(orders, checksum)


main()
