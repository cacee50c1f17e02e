var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var size = 4;

function newFlags() {
  var flags = [];
  for (var i = 0; i < size; i++) {
    var row = [];
    for (var j = 0; j < size; j++) {
      row.push(false);
    }
    flags.push(row);
  }
  return flags;
}

var rows = newFlags(), columns = newFlags(), boxes = newFlags();
var boxOf = [[0, 0, 1, 1], [0, 0, 1, 1], [2, 2, 3, 3], [2, 2, 3, 3]];
var steps = 0;

function fill(row, column) {
  if (column === size) {
    row++;
    column = 0;
    if (row === size) {
      return 1;
    }
  }
  var found = 0;
  var inRow = rows[row], inColumn = columns[column], inBox = boxes[boxOf[row][column]];
  for (var symbol = 0; symbol < size; symbol++) {
    steps++;
    if (!inRow[symbol] && !inColumn[symbol] && !inBox[symbol]) {
      inRow[symbol] = true;
      inColumn[symbol] = true;
      inBox[symbol] = true;
      found += fill(row, column + 1);
      inRow[symbol] = false;
      inColumn[symbol] = false;
      inBox[symbol] = false;
    }
  }
  return found;
}

function main(n) {
  var found = 0;
  for (var round = 0; round < n; round++) {
    found += fill(0, 0);
  }
  show(found + " " + steps);
}

main(Number(args[args.length - 1]) || 60);
