import sys
from collections import deque


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 1000000
    queue = deque([1])
    total = longest = 0
    while queue:
        node = queue.popleft()
        total = (total * 7 + node) % 1000003
        if 2 * node <= n:
            queue.append(2 * node)
        if 2 * node + 1 <= n:
            queue.append(2 * node + 1)
        if len(queue) - 1 > longest:
            longest = len(queue) - 1
    print(total, longest)


main()
