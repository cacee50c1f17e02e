var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function map(list, change) {
  var result = [];
  for (var i = 0; i < list.length; i++) {
    result.push(change(list[i]));
  }
  return result;
}

function filter(list, accepts) {
  var result = [];
  for (var i = 0; i < list.length; i++) {
    if (accepts(list[i])) {
      result.push(list[i]);
    }
  }
  return result;
}

function fold(list, start, join) {
  var result = start;
  for (var i = 0; i < list.length; i++) {
    result = join(result, list[i]);
  }
  return result;
}

function main(n) {
  var numbers = [];
  for (var i = 1; i <= 1000; i++) {
    numbers.push(i);
  }
  var total = 0;
  for (var round = 1; round <= n; round++) {
    var changed = map(numbers, function (x) { return x * round % 97; });
    var chosen = filter(changed, function (x) { return x % 3 === 1; });
    total += fold(chosen, 0, function (sum, x) { return sum + x; });
  }
  show(total);
}

main(Number(args[args.length - 1]) || 900);
