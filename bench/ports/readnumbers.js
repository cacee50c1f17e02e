var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function contentOf(path) {
  if (typeof process === "object") {
    return require("fs").readFileSync(path, "latin1");
  }
  return typeof readFile === "function" ? readFile(path) : read(path);
}

function main(n) {
  var count = 0, sum = 0;
  for (var round = 0; round < n; round++) {
    var words = contentOf("bench/data/readings.txt").split(/\s+/);
    for (var i = 0; i < words.length; i++) {
      if (words[i] !== "") {
        count++;
        sum += Number(words[i]);
      }
    }
  }
  show(count + " " + Math.floor(sum * 100 + 0.5));
}

main(Number(args[args.length - 1]) || 50);
