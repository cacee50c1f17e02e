var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function ackermann(m, k) {
  if (m === 0) {
    return k + 1;
  } else if (k === 0) {
    return ackermann(m - 1, 1);
  }
  return ackermann(m - 1, ackermann(m, k - 1));
}

function main(n) {
  var total = 0;
  for (var round = 0; round < n; round++) {
    total += ackermann(2, 60);
  }
  show(total);
}

main(Number(args[args.length - 1]) || 250);
