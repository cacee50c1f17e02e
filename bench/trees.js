var show = typeof print === "function" ? print : console.log;

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

function main() {
  var total = 0;
  for (var round = 1; round <= 10; round++) {
    total += countNodes(build(15));
  }
  show(total);
}

main();
