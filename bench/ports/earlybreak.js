var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function isEmpty(table) {
  for (var key in table) {
    return false;
  }
  return true;
}

function firstWord(line) {
  var word = /[A-Za-z]+/g, first = "", match;
  while ((match = word.exec(line)) !== null) {
    first = match[0];
    break;
  }
  return first;
}

function position(list, wanted) {
  for (var i = 0; i < list.length; i++) {
    if (list[i] === wanted) {
      return i + 1;
    }
  }
  return 0;
}

function main(n) {
  var line = "12: ", fields = {}, items = [];
  for (var i = 1; i <= 60; i++) {
    line += "word" + i + " ";
    fields["field" + i] = i;
    items.push(i * 3 % 61);
  }

  var empty = 0, letters = 0, positions = 0;
  for (i = 1; i <= n; i++) {
    if (isEmpty(fields)) {
      empty++;
    }
    if (isEmpty({})) {
      empty++;
    }
    letters += firstWord(line).length;
    positions += position(items, i % 10 + 1);
  }
  show(empty + " " + letters + " " + positions);
}

main(Number(args[args.length - 1]) || 40000);
