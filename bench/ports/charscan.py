import sys


def make_lines():
    pieces = ["let ", "x", "(", "12", ")", " + ", "[", "name", "]", " * ", "375", "; "]
    lines = []
    seed = 42
    for i in range(400):
        line = ""
        for j in range(20):
            seed = (seed * 16807) % 2147483647
            line += pieces[seed % 12]
        lines.append(line)
    return lines


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 100
    lines = make_lines()
    letters = digits = blanks = others = deepest = 0
    for round in range(n):
        for line in lines:
            depth = 0
            for i in range(len(line)):
                c = line[i]
                if c >= "a" and c <= "z":
                    letters += 1
                elif c >= "0" and c <= "9":
                    digits += 1
                elif c == " ":
                    blanks += 1
                elif c == "(":
                    depth += 1
                    if depth > deepest:
                        deepest = depth
                elif c == ")":
                    depth -= 1
                else:
                    others += 1
    print(letters, digits, blanks, others, deepest)


main()
