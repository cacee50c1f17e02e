var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var digits = [1];
  for (var factor = 2; factor <= n; factor++) {
    var carry = 0;
    for (var i = 0; i < digits.length; i++) {
      var product = digits[i] * factor + carry;
      digits[i] = product % 10000;
      carry = Math.floor(product / 10000);
    }
    while (carry > 0) {
      digits.push(carry % 10000);
      carry = Math.floor(carry / 10000);
    }
  }
  var sum = 0, checksum = 0;
  for (i = 0; i < digits.length; i++) {
    sum += digits[i];
    checksum = (checksum * 10000 + digits[i]) % 1000003;
  }
  show(digits.length + " " + sum + " " + checksum);
}

main(Number(args[args.length - 1]) || 1500);
