var show = typeof print === "function" ? print : console.log;

function newCounter(step) {
  var count = 0;
  return function () {
    count = count + step;
    return count;
  };
}

function main() {
  var byOne = newCounter(1), byThree = newCounter(3);
  var eighths = 0;
  for (var i = 1; i <= 1500000; i++) {
    if ((byOne() + byThree()) % 8 === 0) {
      eighths++;
    }
  }

  var total = 0;
  for (i = 1; i <= 250000; i++) {
    var counter = newCounter(i % 10);
    counter();
    counter();
    total += counter();
  }
  show(byOne() + " " + byThree() + " " + eighths + " " + total);
}

main();
