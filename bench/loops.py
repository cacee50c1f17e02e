def main():
    size = 3000
    hits = above = rest = 0
    for i in range(1, size + 1):
        for j in range(1, size + 1):
            if (i * j) % 7 == 3:
                hits += 1
            elif i < j:
                above += 1
            else:
                rest += 1
    print(hits, above, rest)


main()
