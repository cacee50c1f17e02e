var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function distance(a, b) {
  var previous = [];
  for (var j = 0; j <= b.length; j++) {
    previous.push(j);
  }
  for (var i = 1; i <= a.length; i++) {
    var current = [i], letter = a.charAt(i - 1);
    for (j = 1; j <= b.length; j++) {
      var cost = b.charAt(j - 1) === letter ? 0 : 1;
      current.push(Math.min(previous[j] + 1, current[j - 1] + 1, previous[j - 1] + cost));
    }
    previous = current;
  }
  return previous[b.length];
}

function main(n) {
  var words = ["kitten", "sitting", "saturday", "sunday", "intention", "execution", "apple"];
  var total = 0;
  for (var i = 1; i <= n; i++) {
    total += distance(words[i % 7], words[i % 5]);
  }
  show(total);
}

main(Number(args[args.length - 1]) || 6000);
