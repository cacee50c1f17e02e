import re
import sys

SYLLABLES = ["ba", "ke", "lo", "mi", "ru", "sa", "ti"]
WORD = re.compile(r"[A-Za-z]+")


def make_text():
    pieces, seed = [], 42
    for _ in range(3000):
        seed = seed * 16807 % 2147483647
        pieces.append(SYLLABLES[seed % 7] + SYLLABLES[seed % 5] + SYLLABLES[seed % 3])
    return " ".join(pieces) + "."


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 130
    text = make_text()
    distinct = checksum = 0
    for _ in range(n):
        counts = {}
        for match in WORD.finditer(text):
            word = match.group()
            counts[word] = counts.get(word, 0) + 1
        words = sorted(counts, key=lambda word: (-counts[word], word))
        distinct += len(words)
        checksum = (checksum * 31 + counts[words[0]] + len(words[1])) % 1000003
    print(distinct, checksum)


main()
