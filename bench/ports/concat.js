var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var length = 0;
  for (var i = 1; i <= n; i++) {
    length += ["id", i, "name", i % 10, "end"].join(";").length;
  }
  var list = [];
  for (i = 1; i <= 1000; i++) {
    list.push("item" + i);
  }
  for (var round = 1; round <= n / 50; round++) {
    length += list.join(", ").length;
  }
  show(length);
}

main(Number(args[args.length - 1]) || 120000);
