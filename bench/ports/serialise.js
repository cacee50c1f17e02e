var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function write(value, parts) {
  if (typeof value === "number") {
    parts.push("i" + value + "e");
  } else if (typeof value === "string") {
    parts.push(value.length + ":" + value);
  } else {
    parts.push("l");
    for (var i = 0; i < value.length; i++) {
      write(value[i], parts);
    }
    parts.push("e");
  }
}

// The place after what was read last.
var position = 0;

function read(text) {
  var mark = text.charAt(position);
  if (mark === "i") {
    var last = text.indexOf("e", position);
    var number = Number(text.substring(position + 1, last));
    position = last + 1;
    return number;
  } else if (mark === "l") {
    var list = [];
    position++;
    while (text.charAt(position) !== "e") {
      list.push(read(text));
    }
    position++;
    return list;
  }
  var colon = text.indexOf(":", position);
  var length = Number(text.substring(position, colon));
  position = colon + 1 + length;
  return text.substring(colon + 1, position);
}

function main(n) {
  var bytes = 0, sum = 0;
  for (var i = 1; i <= n; i++) {
    var record = [i, "name" + i, ["red", "green", [i * 3, i * 7], ""], [[], "end"]];
    var parts = [];
    write(record, parts);
    var text = parts.join("");
    position = 0;
    var copy = read(text);
    bytes += text.length;
    sum += copy[0] + copy[2][2][1] + copy[1].length + copy[3][1].length;
  }
  show(bytes + " " + sum);
}

main(Number(args[args.length - 1]) || 6000);
