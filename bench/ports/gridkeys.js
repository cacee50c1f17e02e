var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var cells = {}, seed = 42;
  for (var i = 1; i <= n * n; i++) {
    seed = seed * 16807 % 2147483647;
    cells[seed % n + "," + Math.floor(seed / n) % n] = i % 9 + 1;
  }

  var sum = 0, missing = 0;
  for (var round = 0; round < 10; round++) {
    for (var y = 0; y < n; y++) {
      for (var x = 0; x < n; x++) {
        var cell = cells[x + "," + y];
        if (cell) {
          sum += cell;
        } else {
          missing++;
        }
      }
    }
  }
  show(sum + " " + missing);
}

main(Number(args[args.length - 1]) || 150);
