var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

var size = 64;

function newBoard() {
  var board = [];
  for (var y = 0; y < size; y++) {
    var row = [];
    for (var x = 0; x < size; x++) {
      row.push(0);
    }
    board.push(row);
  }
  return board;
}

function step(board, following) {
  for (var y = 1; y < size - 1; y++) {
    var above = board[y - 1], row = board[y], below = board[y + 1], target = following[y];
    for (var x = 1; x < size - 1; x++) {
      var around = above[x - 1] + above[x] + above[x + 1] + row[x - 1] + row[x + 1] +
          below[x - 1] + below[x] + below[x + 1];
      if (around === 3 || (around === 2 && row[x] === 1)) {
        target[x] = 1;
      } else {
        target[x] = 0;
      }
    }
  }
}

function main(n) {
  var board = newBoard(), following = newBoard(), seed = 42;
  for (var y = 1; y < size - 1; y++) {
    for (var x = 1; x < size - 1; x++) {
      seed = seed * 16807 % 2147483647;
      board[y][x] = Math.floor(seed / 1000) % 2;
    }
  }
  for (var generation = 0; generation < n; generation++) {
    step(board, following);
    var former = board;
    board = following;
    following = former;
  }
  var checksum = 0;
  for (y = 0; y < size; y++) {
    for (x = 0; x < size; x++) {
      checksum = (checksum * 2 + board[y][x]) % 1000003;
    }
  }
  show(checksum);
}

main(Number(args[args.length - 1]) || 120);
