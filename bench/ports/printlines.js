var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  for (var i = 1; i <= n; i++) {
    show("line " + i + "\t" + i * 3 + "\tend");
  }
}

main(Number(args[args.length - 1]) || 200000);
