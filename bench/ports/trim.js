var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function repeated(text, count) {
  var result = "";
  for (var i = 0; i < count; i++) {
    result += text;
  }
  return result;
}

function main(n) {
  var texts = ["", "x", "key = value", "a longer line of text", "tab\tinside"];
  var padded = [];
  for (var i = 1; i <= n; i++) {
    padded.push(repeated(" ", i % 7) + texts[i % 5] + repeated("\t", i % 3) + repeated(" ", i % 4));
  }

  var once = 0, twice = 0;
  for (i = 0; i < padded.length; i++) {
    once += /^\s*(.*?)\s*$/.exec(padded[i])[1].length;
    twice += padded[i].replace(/^\s+/, "").replace(/\s+$/, "").length;
  }
  show(once + " " + twice);
}

main(Number(args[args.length - 1]) || 60000);
