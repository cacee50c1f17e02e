import sys


def new_matrix(size, factor):
    return [[((i * factor + j * 7) % 19) / 4 for j in range(1, size + 1)] for i in range(1, size + 1)]


def multiply(a, b, size):
    product = []
    for i in range(size):
        left, row = a[i], []
        for j in range(size):
            total = 0
            for k in range(size):
                total += left[k] * b[k][j]
            row.append(total)
        product.append(row)
    return product


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 150
    product = multiply(new_matrix(n, 3), new_matrix(n, 5), n)
    total = 0
    for i in range(n):
        total += product[i][i] * 16
        total += product[0][i] * 16
    print(int(total))


main()
