var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var numbers = [], names = [];
  var seed = 42;
  for (var i = 0; i < n; i++) {
    seed = (seed * 16807) % 2147483647;
    numbers.push(seed % 1000000);
  }
  for (i = 0; i < n / 3; i++) {
    seed = (seed * 16807) % 2147483647;
    names.push("name" + seed % 100000);
  }

  // The default order of this language compares numbers as text.
  numbers.sort(function (a, b) {
    return a - b;
  });
  names.sort();

  var checksum = 0;
  for (i = 0; i < numbers.length; i += 1000) {
    checksum = (checksum * 31 + numbers[i]) % 1000003;
  }
  for (i = 0; i < names.length; i += 1000) {
    checksum = (checksum * 31 + names[i].length) % 1000003;
  }
  show(numbers[0] + " " + numbers[numbers.length - 1] + " " + names[0] + " " +
      names[names.length - 1] + " " + names[Math.floor(n / 6) - 1] + " " + checksum);
}

main(Number(args[args.length - 1]) || 300000);
