var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var order = [], most = 0, total = 0;

function flipsOf(size) {
  var list = [];
  for (var i = 0; i < size; i++) {
    list.push(order[i]);
  }
  var flips = 0, first = list[0];
  while (first !== 1) {
    var low = 0, high = first - 1;
    while (low < high) {
      var item = list[low];
      list[low] = list[high];
      list[high] = item;
      low++;
      high--;
    }
    flips++;
    first = list[0];
  }
  return flips;
}

function visit(from, size) {
  if (from === size) {
    var flips = flipsOf(size);
    total += flips;
    if (flips > most) {
      most = flips;
    }
    return;
  }
  for (var i = from; i < size; i++) {
    var item = order[from];
    order[from] = order[i];
    order[i] = item;
    visit(from + 1, size);
    item = order[from];
    order[from] = order[i];
    order[i] = item;
  }
}

function main(n) {
  for (var i = 1; i <= n; i++) {
    order.push(i);
  }
  visit(0, n);
  show(most + " " + total);
}

main(Number(args[args.length - 1]) || 8);
