var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var texts = [];
  for (var i = 1; i <= 1000; i++) {
    var text = String(i * 7919 % 100000);
    if (i % 3 === 0) {
      text += "." + i % 4 * 25;
    } else if (i % 10 === 0) {
      text += "x";
    }
    texts.push(text);
  }

  var sum = 0, refused = 0, letters = 0;
  for (i = 1; i <= n; i++) {
    var number = Number(texts[i % 1000]);
    if (isNaN(number)) {
      refused++;
    } else {
      sum += number;
    }
    letters += String(i).length;
  }
  show(Math.floor(sum * 100 + 0.5) + " " + refused + " " + letters);
}

main(Number(args[args.length - 1]) || 400000);
