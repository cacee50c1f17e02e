var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var width = n, height = 240, limit = 100;
  var total = 0, inside = 0;
  for (var row = 0; row < height; row++) {
    var cy = row * 2 / height - 1;
    for (var column = 0; column < width; column++) {
      var cx = column * 3 / width - 2;
      var x = 0, y = 0, xx = 0, yy = 0;
      var steps = 0;
      while (steps < limit && xx + yy <= 4) {
        y = 2 * x * y + cy;
        x = xx - yy + cx;
        xx = x * x;
        yy = y * y;
        steps++;
      }
      total += steps;
      if (steps === limit) {
        inside++;
      }
    }
  }
  show(total + " " + inside);
}

main(Number(args[args.length - 1]) || 320);
