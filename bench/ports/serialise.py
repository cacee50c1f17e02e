import sys


def write(value, parts):
    if isinstance(value, int):
        parts.append(f"i{value}e")
    elif isinstance(value, str):
        parts.append(f"{len(value)}:{value}")
    else:
        parts.append("l")
        for item in value:
            write(item, parts)
        parts.append("e")


def read(text, position):
    mark = text[position]
    if mark == "i":
        last = text.index("e", position)
        return int(text[position + 1:last]), last + 1
    if mark == "l":
        items = []
        position += 1
        while text[position] != "e":
            item, position = read(text, position)
            items.append(item)
        return items, position + 1
    colon = text.index(":", position)
    length = int(text[position:colon])
    return text[colon + 1:colon + 1 + length], colon + 1 + length


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 6000
    length = total = 0
    for i in range(1, n + 1):
        record = [i, f"name{i}", ["red", "green", [i * 3, i * 7], ""], [[], "end"]]
        parts = []
        write(record, parts)
        text = "".join(parts)
        copy, _ = read(text, 0)
        length += len(text)
        total += copy[0] + copy[2][2][1] + len(copy[1]) + len(copy[3][1])
    print(length, total)


main()
