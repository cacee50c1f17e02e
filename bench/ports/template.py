import re
import sys

PAGE = ("Dear {name},\nyour order {order} of {count} {item} is on its way to {town}.\n"
        "It arrives in {days} days, {name}. Yours, the {item} team\n")
NAMES = ["name", "order", "count", "item", "town", "days"]


def fill(text, values):
    for name in NAMES:
        text = re.sub("{" + name + "}", str(values[name]), text)
    return text


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 25000
    length, last = 0, ""
    for i in range(1, n + 1):
        last = fill(PAGE, {"name": f"Ann{i % 10}", "order": f"A-{i}", "count": i % 7, "item": "lamp",
                           "town": "Ulm", "days": 3})
        length += len(last)
    print(length, last[:10])


main()
