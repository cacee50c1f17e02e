var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function split(text, separator) {
  var fields = [], from = 0;
  var first = text.indexOf(separator, from);
  while (first >= 0) {
    fields.push(text.substring(from, first));
    from = first + separator.length;
    first = text.indexOf(separator, from);
  }
  fields.push(text.substring(from));
  return fields;
}

function main(n) {
  var seed = 42, count = 0, letters = 0;
  for (var i = 1; i <= n; i++) {
    seed = seed * 16807 % 2147483647;
    var fields = split(i + ", name" + seed % 100 + ", " + seed + ", , true, last one", ", ");
    count += fields.length;
    letters += fields[1].length + fields[5].length;
  }
  show(count + " " + letters);
}

main(Number(args[args.length - 1]) || 60000);
