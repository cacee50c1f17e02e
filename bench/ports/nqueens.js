var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var size = 9;

function clearFlags(count) {
  var flags = [];
  for (var i = 0; i <= count; i++) {
    flags.push(false);
  }
  return flags;
}

function place(row, columns, rising, falling) {
  if (row > size) {
    return 1;
  }
  var found = 0;
  for (var column = 1; column <= size; column++) {
    var up = row + column;
    var down = row - column + size;
    if (!(columns[column] || rising[up] || falling[down])) {
      columns[column] = true;
      rising[up] = true;
      falling[down] = true;
      found += place(row + 1, columns, rising, falling);
      columns[column] = false;
      rising[up] = false;
      falling[down] = false;
    }
  }
  return found;
}

function main(n) {
  var total = 0;
  for (var round = 1; round <= n; round++) {
    total += place(1, clearFlags(size), clearFlags(2 * size), clearFlags(2 * size));
  }
  show(total);
}

main(Number(args[args.length - 1]) || 20);
