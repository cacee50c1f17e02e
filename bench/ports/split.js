var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var seed = 42, count = 0, letters = 0;
  for (var i = 1; i <= n; i++) {
    seed = seed * 16807 % 2147483647;
    var fields = (i + ",name" + seed % 100 + "," + seed + ",true,last one").match(/[^,]+/g);
    var words = ("  the " + seed % 100 + " words of\ta line ").match(/\S+/g);
    count += fields.length + words.length;
    letters += fields[1].length + words[1].length;
  }
  show(count + " " + letters);
}

main(Number(args[args.length - 1]) || 60000);
