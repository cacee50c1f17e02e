var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var syllables = ["ba", "ke", "lo", "mi", "ru", "sa", "ti"];

function makeText() {
  var pieces = [], seed = 42;
  for (var i = 0; i < 3000; i++) {
    seed = seed * 16807 % 2147483647;
    pieces.push(syllables[seed % 7] + syllables[seed % 5] + syllables[seed % 3]);
  }
  return pieces.join(" ") + ".";
}

function main(n) {
  var text = makeText();
  var distinct = 0, checksum = 0;
  for (var round = 0; round < n; round++) {
    var counts = {}, list = [], pattern = /[A-Za-z]+/g, match;
    while ((match = pattern.exec(text)) !== null) {
      var word = match[0];
      if (!counts[word]) {
        list.push(word);
      }
      counts[word] = (counts[word] || 0) + 1;
    }
    list.sort(function (a, b) {
      if (counts[a] === counts[b]) {
        return a < b ? -1 : 1;
      }
      return counts[b] - counts[a];
    });
    distinct += list.length;
    checksum = (checksum * 31 + counts[list[0]] + list[1].length) % 1000003;
  }
  show(distinct + " " + checksum);
}

main(Number(args[args.length - 1]) || 130);
