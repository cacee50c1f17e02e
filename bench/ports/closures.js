var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function newCounter(step) {
  var count = 0;
  return function () {
    count = count + step;
    return count;
  };
}

function main(n) {
  var byOne = newCounter(1), byThree = newCounter(3);
  var eighths = 0;
  for (var i = 1; i <= n; i++) {
    if ((byOne() + byThree()) % 8 === 0) {
      eighths++;
    }
  }

  var total = 0;
  for (i = 1; i <= n / 6; i++) {
    var counter = newCounter(i % 10);
    counter();
    counter();
    total += counter();
  }
  show(byOne() + " " + byThree() + " " + eighths + " " + total);
}

main(Number(args[args.length - 1]) || 1500000);
