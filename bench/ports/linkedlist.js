var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var sum = 0;
  for (var round = 0; round < n; round++) {
    var first = null;
    for (var i = 1; i <= 5000; i++) {
      first = {value: i, rest: first};
    }
    var reversed = null;
    while (first) {
      var rest = first.rest;
      first.rest = reversed;
      reversed = first;
      first = rest;
    }
    var node = reversed, place = 0;
    while (node) {
      place++;
      sum = (sum + node.value * place) % 1000003;
      node = node.rest;
    }
  }
  show(sum);
}

main(Number(args[args.length - 1]) || 100);
