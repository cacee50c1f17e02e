var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var hits = 0, above = 0, rest = 0;
  for (var i = 1; i <= n; i++) {
    for (var j = 1; j <= n; j++) {
      if ((i * j) % 7 === 3) {
        hits++;
      } else if (i < j) {
        above++;
      } else {
        rest++;
      }
    }
  }
  show(hits + " " + above + " " + rest);
}

main(Number(args[args.length - 1]) || 3000);
