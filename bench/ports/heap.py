import sys


class Event:
    __slots__ = ("time", "number")

    def __init__(self, time, number):
        self.time = time
        self.number = number


def push(heap, event):
    i = len(heap)
    heap.append(event)
    while i > 0:
        parent = (i - 1) // 2
        if heap[parent].time <= event.time:
            break
        heap[i] = heap[parent]
        i = parent
    heap[i] = event


def pop(heap):
    event = heap.pop()
    size = len(heap)
    if size == 0:
        return event
    first = heap[0]
    i, child = 0, 1
    while child < size:
        if child + 1 < size and heap[child + 1].time < heap[child].time:
            child += 1
        if event.time <= heap[child].time:
            break
        heap[i] = heap[child]
        i = child
        child = 2 * i + 1
    heap[i] = event
    return first


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 80000
    heap, seed = [], 42
    for i in range(1, 2001):
        seed = seed * 16807 % 2147483647
        push(heap, Event(seed % 100000, i))
    checksum = 0
    for _ in range(n):
        event = pop(heap)
        checksum = (checksum * 31 + event.time + event.number) % 1000003
        seed = seed * 16807 % 2147483647
        push(heap, Event(event.time + seed % 1000, event.number))
    print(checksum)


main()
