var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var counts = {};
  var seed = 42;
  for (var i = 1; i <= n; i++) {
    seed = (seed * 3877 + 29573) % 139968;
    var word = "word" + seed % 5000;
    var count = counts[word];
    if (count) {
      counts[word] = count + 1;
    } else {
      counts[word] = 1;
    }
  }

  var distinct = 0, most = 0, letters = 0;
  for (word in counts) {
    distinct++;
    letters += word.length * counts[word];
    if (counts[word] > most) {
      most = counts[word];
    }
  }
  show(distinct + " " + most + " " + letters);
}

main(Number(args[args.length - 1]) || 900000);
