import re
import sys

LEVELS, PATHS = ["INFO", "WARN", "ERROR"], ["/", "/index.html", "/api/items", "/login"]
LINE = re.compile(r"^[0-9]+-[0-9]+-([0-9]+) [0-9]+:([0-9]+) \[([A-Za-z]+)\] [A-Za-z]+ (\S+)"
                  r" user=([A-Za-z0-9_]+) took=([0-9]+)ms$")


def make_lines(n):
    lines, seed = [], 42
    for _ in range(n):
        seed = seed * 16807 % 2147483647
        lines.append(f"2024-05-{10 + seed % 20} 10:{10 + seed % 50} [{LEVELS[seed % 3]}]"
                     f" GET {PATHS[seed % 4]} user=u{seed % 1000} took={seed % 900}ms")
    return lines


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 40000
    counts, slowest, longest, total, letters = {}, "", 0, 0, 0
    for line in make_lines(n):
        day, minute, level, path, user, took = LINE.match(line).groups()
        time = int(took)
        counts[level] = counts.get(level, 0) + 1
        total += time
        letters += len(path) + int(day) + int(minute)
        if time > longest:
            longest = time
            slowest = user
    print(*(counts[level] for level in LEVELS), total, letters, slowest)


main()
