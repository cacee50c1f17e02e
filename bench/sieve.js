var show = typeof print === "function" ? print : console.log;

function main() {
  var limit = 2000000;
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

main();
