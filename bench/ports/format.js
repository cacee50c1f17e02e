var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var names = ["first", "second", "third"], length = 0;
  for (var i = 1; i <= n; i++) {
    var line = i + ": " + names[i % 3] + " has " + i % 77 + " of " + n + " (" + (i % 2 === 0) + ")";
    length += line.length;
  }
  show(length);
}

main(Number(args[args.length - 1]) || 300000);
