var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var longest = 0, best = 0;
  for (var start = 1; start <= n; start++) {
    var x = start, steps = 0;
    while (x !== 1) {
      if (x % 2 === 0) {
        x = Math.floor(x / 2);
      } else {
        x = 3 * x + 1;
      }
      steps++;
    }
    if (steps > longest) {
      longest = steps;
      best = start;
    }
  }
  show(best + " " + longest);
}

main(Number(args[args.length - 1]) || 30000);
