import sys
from functools import cmp_to_key


class Person:
    __slots__ = ("name", "age", "number")

    def __init__(self, name, age, number):
        self.name = name
        self.age = age
        self.number = number


def compare(a, b):
    if a.age != b.age:
        return b.age - a.age
    if a.name != b.name:
        return -1 if a.name < b.name else 1
    return a.number - b.number


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 50000
    people, seed = [], 42
    for i in range(1, n + 1):
        seed = seed * 16807 % 2147483647
        people.append(Person(f"name{seed % 500}", seed % 80, i))
    people.sort(key=cmp_to_key(compare))

    checksum = 0
    for person in people:
        checksum = (checksum * 31 + person.number) % 1000003
    print(people[0].name, people[-1].name, checksum)


main()
