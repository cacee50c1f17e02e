var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(limit) {
  var isPrime = [false, false];
  for (var n = 2; n <= limit; n++) {
    isPrime[n] = true;
  }

  var factor = 2;
  while (factor * factor <= limit) {
    if (isPrime[factor]) {
      for (var multiple = factor * factor; multiple <= limit; multiple += factor) {
        isPrime[multiple] = false;
      }
    }
    factor++;
  }

  var count = 0;
  for (n = 1; n <= limit; n++) {
    if (isPrime[n]) {
      count++;
    }
  }
  show(count);
}

main(Number(args[args.length - 1]) || 2000000);
