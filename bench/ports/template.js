var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var page = "Dear {name},\nyour order {order} of {count} {item} is on its way to {town}.\n" +
    "It arrives in {days} days, {name}. Yours, the {item} team\n";
var names = ["name", "order", "count", "item", "town", "days"];
var patterns = {};
for (var k = 0; k < names.length; k++) {
  patterns[names[k]] = new RegExp("\\{" + names[k] + "\\}", "g");
}

function fill(text, values) {
  for (var i = 0; i < names.length; i++) {
    text = text.replace(patterns[names[i]], values[names[i]]);
  }
  return text;
}

function main(n) {
  var length = 0, last = "";
  for (var i = 1; i <= n; i++) {
    last = fill(page, {name: "Ann" + i % 10, order: "A-" + i, count: i % 7, item: "lamp", town: "Ulm", days: 3});
    length += last.length;
  }
  show(length + " " + last.substring(0, 10));
}

main(Number(args[args.length - 1]) || 25000);
