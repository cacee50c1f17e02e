import sys


def element(i, j):
    return 1 / ((i + j) * (i + j + 1) / 2 + i + 1)


def multiply(vector, size):
    result = []
    for i in range(size):
        total = 0
        for j in range(size):
            total += element(i, j) * vector[j]
        result.append(total)
    return result


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 150
    vector = [1] * n
    for _ in range(40):
        vector = multiply(vector, n)
        largest = vector[0]
        for i in range(n):
            vector[i] /= largest
    total = 0
    for value in vector:
        total += value
    print(int(total * 100000000 + 0.5))


main()
