var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var checksum = 0, orders = 0;

function permute(items, from, size) {
  if (from === size - 1) {
    orders++;
    checksum = (checksum * 3 + items[0] * items[size - 1]) % 1000003;
    return;
  }
  for (var i = from; i < size; i++) {
    var item = items[from];
    items[from] = items[i];
    items[i] = item;
    permute(items, from + 1, size);
    item = items[from];
    items[from] = items[i];
    items[i] = item;
  }
}

function main(n) {
  var items = [];
  for (var i = 1; i <= n; i++) {
    items.push(i);
  }
  permute(items, 0, n);
  show(orders + " " + checksum);
}

main(Number(args[args.length - 1]) || 9);
