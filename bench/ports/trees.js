var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function build(depth) {
  if (depth === 0) {
    return [null, null];
  }
  return [build(depth - 1), build(depth - 1)];
}

function countNodes(tree) {
  if (tree[0]) {
    return 1 + countNodes(tree[0]) + countNodes(tree[1]);
  }
  return 1;
}

function main(n) {
  var total = 0;
  for (var round = 1; round <= n; round++) {
    total += countNodes(build(15));
  }
  show(total);
}

main(Number(args[args.length - 1]) || 10);
