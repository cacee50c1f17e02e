import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 200
    pieces = []
    for i in range(1, n * 2500 + 1):
        pieces.append("item" + str(i % 1000))
    joined = ",".join(pieces)

    length = 0
    last = ""
    for round in range(n):
        text = ""
        for i in range(1, 1001):
            text += "<" + str(i % 10) + ">"
        length += len(text)
        last = text
    print(len(joined), joined[-16:], length, last[-9:])


main()
