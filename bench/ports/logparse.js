var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var levels = ["INFO", "WARN", "ERROR"], paths = ["/", "/index.html", "/api/items", "/login"];

function makeLines(n) {
  var lines = [], seed = 42;
  for (var i = 0; i < n; i++) {
    seed = seed * 16807 % 2147483647;
    lines.push("2024-05-" + (10 + seed % 20) + " 10:" + (10 + seed % 50) + " [" + levels[seed % 3] +
        "] GET " + paths[seed % 4] + " user=u" + seed % 1000 + " took=" + seed % 900 + "ms");
  }
  return lines;
}

function main(n) {
  var pattern =
      /^[0-9]+-[0-9]+-([0-9]+) [0-9]+:([0-9]+) \[([A-Za-z]+)\] [A-Za-z]+ (\S+) user=(\w+) took=([0-9]+)ms$/;
  var lines = makeLines(n);
  var counts = {}, slowest = "", longest = 0, total = 0, letters = 0;
  for (var i = 0; i < lines.length; i++) {
    var match = pattern.exec(lines[i]);
    var level = match[3], time = Number(match[6]);
    counts[level] = (counts[level] || 0) + 1;
    total += time;
    letters += match[4].length + Number(match[1]) + Number(match[2]);
    if (time > longest) {
      longest = time;
      slowest = match[5];
    }
  }
  show(counts.INFO + " " + counts.WARN + " " + counts.ERROR + " " + total + " " + letters + " " + slowest);
}

main(Number(args[args.length - 1]) || 40000);
