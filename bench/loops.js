var show = typeof print === "function" ? print : console.log;

function main() {
  var size = 3000;
  var hits = 0, above = 0, rest = 0;
  for (var i = 1; i <= size; i++) {
    for (var j = 1; j <= size; j++) {
      if ((i * j) % 7 === 3) {
        hits++;
      } else if (i < j) {
        above++;
      } else {
        rest++;
      }
    }
  }
  show(hits + " " + above + " " + rest);
}

main();
