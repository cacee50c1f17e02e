import sys


def map_list(items, change):
    result = []
    for item in items:
        result.append(change(item))
    return result


def filter_list(items, accepts):
    result = []
    for item in items:
        if accepts(item):
            result.append(item)
    return result


def fold(items, start, join):
    result = start
    for item in items:
        result = join(result, item)
    return result


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 900
    numbers = list(range(1, 1001))
    total = 0
    for round_number in range(1, n + 1):
        changed = map_list(numbers, lambda x: x * round_number % 97)
        chosen = filter_list(changed, lambda x: x % 3 == 1)
        total += fold(chosen, 0, lambda so_far, x: so_far + x)
    print(total)


main()
