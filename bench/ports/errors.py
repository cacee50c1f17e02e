import sys


class Account:
    def __init__(self):
        self.balance = 0


def checked(amount, limit):
    if amount > limit:
        raise ValueError(f"amount {amount} above {limit}")
    return amount


def withdraw(account, amount):
    account.balance -= checked(amount, 50)
    return account.balance


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 60000
    account = Account()
    failed = letters = 0
    for i in range(1, n + 1):
        try:
            withdraw(account, i % 101)
        except ValueError as error:
            failed += 1
            letters += len(str(error))
    print(account.balance, failed, letters)


main()
