var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var pieces = [];
  for (var i = 1; i <= n * 2500; i++) {
    pieces.push("item" + i % 1000);
  }
  var joined = pieces.join(",");

  var length = 0, last = "";
  for (var round = 1; round <= n; round++) {
    var text = "";
    for (i = 1; i <= 1000; i++) {
      text += "<" + i % 10 + ">";
    }
    length += text.length;
    last = text;
  }
  show(joined.length + " " + joined.slice(-16) + " " + length + " " + last.slice(-9));
}

main(Number(args[args.length - 1]) || 200);
