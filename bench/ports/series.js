var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function element(i, j) {
  return 1 / ((i + j) * (i + j + 1) / 2 + i + 1);
}

function multiply(vector, size) {
  var result = [];
  for (var i = 0; i < size; i++) {
    var sum = 0;
    for (var j = 0; j < size; j++) {
      sum += element(i, j) * vector[j];
    }
    result.push(sum);
  }
  return result;
}

function main(n) {
  var vector = [];
  for (var i = 0; i < n; i++) {
    vector.push(1);
  }
  for (var round = 0; round < 40; round++) {
    vector = multiply(vector, n);
    var largest = vector[0];
    for (i = 0; i < n; i++) {
      vector[i] = vector[i] / largest;
    }
  }
  var sum = 0;
  for (i = 0; i < n; i++) {
    sum += vector[i];
  }
  show(Math.floor(sum * 100000000 + 0.5));
}

main(Number(args[args.length - 1]) || 150);
