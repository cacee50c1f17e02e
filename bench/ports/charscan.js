var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function makeLines() {
  var pieces = ["let ", "x", "(", "12", ")", " + ", "[", "name", "]", " * ", "375", "; "];
  var lines = [];
  var seed = 42;
  for (var i = 0; i < 400; i++) {
    var line = "";
    for (var j = 0; j < 20; j++) {
      seed = (seed * 16807) % 2147483647;
      line += pieces[seed % 12];
    }
    lines.push(line);
  }
  return lines;
}

function main(n) {
  var lines = makeLines();
  var letters = 0, digits = 0, blanks = 0, others = 0, deepest = 0;
  for (var round = 1; round <= n; round++) {
    for (var number = 0; number < lines.length; number++) {
      var line = lines[number];
      var depth = 0;
      for (var i = 0; i < line.length; i++) {
        var c = line.charAt(i);
        if (c >= "a" && c <= "z") {
          letters++;
        } else if (c >= "0" && c <= "9") {
          digits++;
        } else if (c === " ") {
          blanks++;
        } else if (c === "(") {
          depth++;
          if (depth > deepest) {
            deepest = depth;
          }
        } else if (c === ")") {
          depth--;
        } else {
          others++;
        }
      }
    }
  }
  show(letters + " " + digits + " " + blanks + " " + others + " " + deepest);
}

main(Number(args[args.length - 1]) || 100);
