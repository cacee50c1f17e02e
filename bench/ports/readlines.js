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
  var lines = 0, bytes = 0, longest = 0;
  for (var round = 0; round < n; round++) {
    var list = contentOf("bench/data/readings.txt").split("\n");
    list.pop();
    for (var i = 0; i < list.length; i++) {
      var line = list[i];
      lines++;
      bytes += line.length;
      if (line.length > longest) {
        longest = line.length;
      }
    }
  }
  show(lines + " " + bytes + " " + longest);
}

main(Number(args[args.length - 1]) || 300);
