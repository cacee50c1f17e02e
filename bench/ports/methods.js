var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function Plain() {
  this.total = 0;
}
Plain.prototype.add = function (amount) {
  this.total = this.total + amount;
};
Plain.prototype.read = function () {
  return this.total;
};

function Wrapped(limit) {
  this.total = 0;
  this.limit = limit;
}
Wrapped.prototype.add = function (amount) {
  var total = this.total + amount;
  if (total >= this.limit) {
    total -= this.limit;
  }
  this.total = total;
};
Wrapped.prototype.read = function () {
  return this.total;
};

function main(n) {
  var plain = new Plain();
  var wrapped = new Wrapped(997);
  var sum = 0;
  for (var i = 1; i <= n; i++) {
    plain.add(1);
    wrapped.add(7);
    sum += (plain.read() + wrapped.read()) % 3;
  }
  show(plain.read() + " " + wrapped.read() + " " + sum);
}

main(Number(args[args.length - 1]) || 1000000);
