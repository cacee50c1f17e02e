import sys

REGIONS = ["north", "south", "east", "west"]


class Order:
    __slots__ = ("number", "region", "amount", "paid")

    def __init__(self, number, region, amount, paid):
        self.number = number
        self.region = region
        self.amount = amount
        self.paid = paid


def unpaid_above(orders, amount):
    return [order for order in orders if not order.paid and order.amount > amount]


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 30000
    seed = 42
    orders = []
    for i in range(1, n + 1):
        seed = seed * 16807 % 2147483647
        orders.append(Order(i, REGIONS[seed % 4], seed % 500, seed % 3 == 0))

    kept = 0
    for _ in range(30):
        for order in unpaid_above(orders, 450):
            order.amount -= 30
            order.paid = order.amount < 430
            kept += 1
        for order in orders:
            order.amount += 1

    totals = {}
    for order in orders:
        totals[order.region] = totals.get(order.region, 0) + order.amount
    print(kept, *(totals[region] for region in REGIONS))


main()
