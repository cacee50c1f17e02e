import re
import sys

BOTH_ENDS = re.compile(r"^\s*(.*?)\s*$")
START, END = re.compile(r"^\s+"), re.compile(r"\s+$")


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 60000
    texts = ["", "x", "key = value", "a longer line of text", "tab\tinside"]
    padded = [" " * (i % 7) + texts[i % 5] + "\t" * (i % 3) + " " * (i % 4) for i in range(1, n + 1)]
    once = twice = 0
    for text in padded:
        once += len(BOTH_ENDS.match(text).group(1))
        twice += len(END.sub("", START.sub("", text)))
    print(once, twice)


main()
