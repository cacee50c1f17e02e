var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function listOf(count, valueAt) {
  var list = [];
  for (var i = 1; i <= count; i++) {
    list.push(valueAt(i));
  }
  return list;
}

function ascending(a, b) {
  return a - b;
}

function main(n) {
  var shapes = [
    function (i) { return i; },
    function (i) { return n - i; },
    function (i) { return 2 * i < n ? i : n - i; },
    function () { return 7; },
    function (i) { return i % 1000 === 0 ? i - 500 : i; }
  ];
  var checksum = 0;
  for (var number = 0; number < shapes.length; number++) {
    var list = listOf(n, shapes[number]);
    list.sort(ascending);
    for (var i = 0; i < n; i += 100) {
      checksum = (checksum * 31 + list[i]) % 1000003;
    }
  }
  show(checksum);
}

main(Number(args[args.length - 1]) || 150000);
