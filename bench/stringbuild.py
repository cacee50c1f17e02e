def main():
    pieces = []
    for i in range(1, 500001):
        pieces.append("item" + str(i % 1000))
    joined = ",".join(pieces)

    length = 0
    last = ""
    for round in range(200):
        text = ""
        for i in range(1, 1001):
            text += "<" + str(i % 10) + ">"
        length += len(text)
        last = text
    print(len(joined), joined[-16:], length, last[-9:])


main()
