var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function newMatrix(size, factor) {
  var rows = [];
  for (var i = 1; i <= size; i++) {
    var row = [];
    for (var j = 1; j <= size; j++) {
      row.push((i * factor + j * 7) % 19 / 4);
    }
    rows.push(row);
  }
  return rows;
}

function multiply(a, b, size) {
  var product = [];
  for (var i = 0; i < size; i++) {
    var left = a[i], row = [];
    for (var j = 0; j < size; j++) {
      var sum = 0;
      for (var k = 0; k < size; k++) {
        sum += left[k] * b[k][j];
      }
      row.push(sum);
    }
    product.push(row);
  }
  return product;
}

function main(n) {
  var product = multiply(newMatrix(n, 3), newMatrix(n, 5), n);
  var sum = 0;
  for (var i = 0; i < n; i++) {
    sum += product[i][i] * 16;
    sum += product[0][i] * 16;
  }
  show(Math.floor(sum));
}

main(Number(args[args.length - 1]) || 150);
