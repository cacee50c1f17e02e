var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function setOf(bytes) {
  var set = {};
  for (var i = 0; i < bytes.length; i++) {
    set[bytes.charAt(i)] = true;
  }
  return set;
}

var letters = setOf("abcdefghijklmnopqrstuvwxyz_");
var digits = setOf("0123456789");
var blanks = setOf(" \t\n");

function tokenise(text) {
  var tokens = [], i = 0, size = text.length;
  while (i < size) {
    var byte = text.charAt(i);
    var from = i;
    i++;
    if (blanks[byte]) {
      while (i < size && blanks[text.charAt(i)]) {
        i++;
      }
    } else if (letters[byte]) {
      while (i < size && (letters[text.charAt(i)] || digits[text.charAt(i)])) {
        i++;
      }
      tokens.push({kind: "name", text: text.substring(from, i)});
    } else if (digits[byte]) {
      while (i < size && digits[text.charAt(i)]) {
        i++;
      }
      tokens.push({kind: "number", text: text.substring(from, i)});
    } else {
      tokens.push({kind: "sign", text: byte});
    }
  }
  return tokens;
}

function main(n) {
  var pieces = [];
  for (var i = 1; i <= 20; i++) {
    pieces.push("let total_" + i + " = (count + " + i * 37 + ") * price[" + i + "];\n");
  }
  var text = pieces.join("");

  var counts = {name: 0, number: 0, sign: 0}, length = 0;
  for (var round = 0; round < n; round++) {
    var tokens = tokenise(text);
    for (i = 0; i < tokens.length; i++) {
      counts[tokens[i].kind]++;
      length += tokens[i].text.length;
    }
  }
  show(counts.name + " " + counts.number + " " + counts.sign + " " + length);
}

main(Number(args[args.length - 1]) || 600);
