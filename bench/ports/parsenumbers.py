import sys


def parse(text):
    try:
        return float(text) if "." in text else int(text)
    except ValueError:
        return None


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 400000
    texts = []
    for i in range(1, 1001):
        text = str(i * 7919 % 100000)
        if i % 3 == 0:
            text += f".{i % 4 * 25}"
        elif i % 10 == 0:
            text += "x"
        texts.append(text)

    total = refused = letters = 0
    for i in range(1, n + 1):
        number = parse(texts[i % 1000])
        if number is None:
            refused += 1
        else:
            total += number
        letters += len(str(i))
    print(int(total * 100 + 0.5), refused, letters)


main()
