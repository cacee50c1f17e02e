import sys


class Page:
    def __init__(self, title):
        self.title = title
        self.text = ""


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 120
    length, letters = 0, ["a", "b", "c"]
    for _ in range(n):
        page = Page("page")
        columns = ["", ""]
        for i in range(1, 2501):
            page.text += f"<{i % 10}>"
            columns[i % 2] += letters[i % 3]
        length += len(page.text) + len(columns[0]) * 2 + len(columns[1])
    print(length)


main()
