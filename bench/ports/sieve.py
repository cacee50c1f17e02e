import sys


def main():
    limit = int(sys.argv[1]) if len(sys.argv) > 1 else 2000000
    is_prime = [False, False]
    for n in range(2, limit + 1):
        is_prime.append(True)

    factor = 2
    while factor * factor <= limit:
        if is_prime[factor]:
            for multiple in range(factor * factor, limit + 1, factor):
                is_prime[multiple] = False
        factor += 1

    count = 0
    for n in range(1, limit + 1):
        if is_prime[n]:
            count += 1
    print(count)


main()
