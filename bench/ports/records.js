var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var regions = ["north", "south", "east", "west"];

function unpaidAbove(orders, amount) {
  var found = [];
  for (var i = 0; i < orders.length; i++) {
    var order = orders[i];
    if (!order.paid && order.amount > amount) {
      found.push(order);
    }
  }
  return found;
}

function main(n) {
  var seed = 42, orders = [];
  for (var i = 1; i <= n; i++) {
    seed = seed * 16807 % 2147483647;
    orders.push({id: i, region: regions[seed % 4], amount: seed % 500, paid: seed % 3 === 0});
  }

  var kept = 0;
  for (var round = 0; round < 30; round++) {
    var unpaid = unpaidAbove(orders, 450);
    for (i = 0; i < unpaid.length; i++) {
      var order = unpaid[i];
      order.amount -= 30;
      order.paid = order.amount < 430;
      kept++;
    }
    for (i = 0; i < orders.length; i++) {
      orders[i].amount += 1;
    }
  }

  var totals = {};
  for (i = 0; i < orders.length; i++) {
    totals[orders[i].region] = (totals[orders[i].region] || 0) + orders[i].amount;
  }
  show(kept + " " + totals.north + " " + totals.south + " " + totals.east + " " + totals.west);
}

main(Number(args[args.length - 1]) || 30000);
