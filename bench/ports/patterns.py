import re
import sys

DATE = re.compile(r"^([0-9]+)-([0-9]+)-([0-9]+)")
TOOK = re.compile(r"took=([0-9]+)")
FIELD = re.compile(r"([A-Za-z]+)=([A-Za-z0-9_]+)")
WORD = re.compile(r"[A-Za-z]+")
NUMBER = re.compile(r"[0-9]+")


def make_lines(n):
    levels = ["info", "debug", "warning", "error"]
    parts = ["disk", "network", "session", "cache", "worker"]
    lines = []
    seed = 42
    for i in range(1, n + 1):
        seed = (seed * 16807) % 2147483647
        lines.append(
            f"2024-05-{10 + i % 20} 10:{10 + seed % 50} {levels[seed % 4]} {parts[seed % 5]}: "
            f"request id={seed} took={seed % 900} ms, {i % 3} retries"
        )
    return lines


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 20000
    errors = days = times = fields = words = masked = 0
    for line in make_lines(n):
        if " error " in line:
            errors += 1
        year, month, day = DATE.search(line).groups()
        days += int(day)
        times += int(TOOK.search(line).group(1))
        for match in FIELD.finditer(line):
            key, value = match.groups()
            fields += len(key) + len(value)
        for match in WORD.finditer(line):
            words += 1
        masked += len(NUMBER.sub("#", line))
    print(errors, days, times, fields, words, masked)


main()
