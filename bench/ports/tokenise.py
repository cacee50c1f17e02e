import sys

LETTERS = set("abcdefghijklmnopqrstuvwxyz_")
DIGITS = set("0123456789")
BLANKS = set(" \t\n")


class Token:
    __slots__ = ("kind", "text")

    def __init__(self, kind, text):
        self.kind = kind
        self.text = text


def tokenise(text):
    tokens, i, size = [], 0, len(text)
    while i < size:
        byte = text[i]
        start = i
        i += 1
        if byte in BLANKS:
            while i < size and text[i] in BLANKS:
                i += 1
        elif byte in LETTERS:
            while i < size and (text[i] in LETTERS or text[i] in DIGITS):
                i += 1
            tokens.append(Token("name", text[start:i]))
        elif byte in DIGITS:
            while i < size and text[i] in DIGITS:
                i += 1
            tokens.append(Token("number", text[start:i]))
        else:
            tokens.append(Token("sign", byte))
    return tokens


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 600
    text = "".join(f"let total_{i} = (count + {i * 37}) * price[{i}];\n" for i in range(1, 21))
    counts, length = {"name": 0, "number": 0, "sign": 0}, 0
    for _ in range(n):
        for token in tokenise(text):
            counts[token.kind] += 1
            length += len(token.text)
    print(counts["name"], counts["number"], counts["sign"], length)


main()
