var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function tak(x, y, z) {
  if (y >= x) {
    return z;
  }
  return tak(tak(x - 1, y, z), tak(y - 1, z, x), tak(z - 1, x, y));
}

function main(n) {
  var total = 0;
  for (var round = 0; round < n; round++) {
    total += tak(18, 12, 6);
  }
  show(total);
}

main(Number(args[args.length - 1]) || 40);
