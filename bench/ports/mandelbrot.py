import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 320
    width, height, limit = n, 240, 100
    total = inside = 0
    for row in range(height):
        cy = row * 2 / height - 1
        for column in range(width):
            cx = column * 3 / width - 2
            x = y = xx = yy = 0.0
            steps = 0
            while steps < limit and xx + yy <= 4:
                y = 2 * x * y + cy
                x = xx - yy + cx
                xx = x * x
                yy = y * y
                steps += 1
            total += steps
            if steps == limit:
                inside += 1
    print(total, inside)


main()
