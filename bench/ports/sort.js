var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var values = [];
  var seed = 42;
  for (var i = 0; i < n; i++) {
    seed = (seed * 16807) % 2147483647;
    values.push(seed % 1000000);
  }

  values.sort(function (a, b) {
    return b - a;
  });

  var checksum = 0;
  for (i = 0; i < values.length; i += 1000) {
    checksum = (checksum * 31 + values[i]) % 1000003;
  }
  show(values[0] + " " + values[values.length - 1] + " " + checksum);
}

main(Number(args[args.length - 1]) || 200000);
