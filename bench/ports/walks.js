var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function walk(x, y, goal, heading, turns) {
  if (x > goal || y > goal || turns < 0) {
    return 0;
  } else if (x === goal && y === goal) {
    return 1;
  } else if (heading === 1) {
    return walk(x + 1, y, goal, 1, turns) + walk(x, y + 1, goal, 2, turns - 1);
  }
  return walk(x + 1, y, goal, 1, turns - 1) + walk(x, y + 1, goal, 2, turns);
}

function main(n) {
  show(walk(0, 0, n, 1, 7) + " " + walk(0, 0, n, 2, 6));
}

main(Number(args[args.length - 1]) || 12);
