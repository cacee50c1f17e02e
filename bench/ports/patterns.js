var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function makeLines(n) {
  var levels = ["info", "debug", "warning", "error"];
  var parts = ["disk", "network", "session", "cache", "worker"];
  var lines = [];
  var seed = 42;
  for (var i = 1; i <= n; i++) {
    seed = (seed * 16807) % 2147483647;
    lines.push("2024-05-" + (10 + i % 20) + " 10:" + (10 + seed % 50) + " " +
        levels[seed % 4] + " " + parts[seed % 5] + ": request id=" + seed +
        " took=" + seed % 900 + " ms, " + i % 3 + " retries");
  }
  return lines;
}

function main(n) {
  var datePattern = /^([0-9]+)-([0-9]+)-([0-9]+)/;
  var tookPattern = /took=([0-9]+)/;
  var fieldPattern = /([A-Za-z]+)=([A-Za-z0-9_]+)/g;
  var wordPattern = /[A-Za-z]+/g;
  var numberPattern = /[0-9]+/g;

  var lines = makeLines(n);
  var errors = 0, days = 0, times = 0, fields = 0, words = 0, masked = 0;
  for (var i = 0; i < lines.length; i++) {
    var line = lines[i];
    if (line.indexOf(" error ") >= 0) {
      errors++;
    }
    days += Number(datePattern.exec(line)[3]);
    times += Number(tookPattern.exec(line)[1]);
    var match;
    fieldPattern.lastIndex = 0;
    while ((match = fieldPattern.exec(line)) !== null) {
      fields += match[1].length + match[2].length;
    }
    wordPattern.lastIndex = 0;
    while (wordPattern.exec(line) !== null) {
      words++;
    }
    masked += line.replace(numberPattern, "#").length;
  }
  show(errors + " " + days + " " + times + " " + fields + " " + words + " " + masked);
}

main(Number(args[args.length - 1]) || 20000);
