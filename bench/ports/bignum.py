import sys


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 1500
    digits = [1]
    for factor in range(2, n + 1):
        carry = 0
        for i in range(len(digits)):
            product = digits[i] * factor + carry
            digits[i] = product % 10000
            carry = product // 10000
        while carry > 0:
            digits.append(carry % 10000)
            carry //= 10000
    total = checksum = 0
    for digit in digits:
        total += digit
        checksum = (checksum * 10000 + digit) % 1000003
    print(len(digits), total, checksum)


main()
