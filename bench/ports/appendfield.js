var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var length = 0, letters = ["a", "b", "c"];
  for (var round = 0; round < n; round++) {
    var page = {title: "page", text: ""};
    var columns = ["", ""];
    for (var i = 1; i <= 2500; i++) {
      page.text += "<" + i % 10 + ">";
      columns[i % 2] += letters[i % 3];
    }
    length += page.text.length + columns[0].length * 2 + columns[1].length;
  }
  show(length);
}

main(Number(args[args.length - 1]) || 120);
