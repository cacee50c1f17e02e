var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function checked(amount, limit) {
  if (amount > limit) {
    throw new Error("amount " + amount + " above " + limit);
  }
  return amount;
}

function withdraw(account, amount) {
  account.balance -= checked(amount, 50);
  return account.balance;
}

function main(n) {
  var account = {balance: 0};
  var failed = 0, letters = 0;
  for (var i = 1; i <= n; i++) {
    try {
      withdraw(account, i % 101);
    } catch (error) {
      failed++;
      letters += error.message.length;
    }
  }
  show(account.balance + " " + failed + " " + letters);
}

main(Number(args[args.length - 1]) || 60000);
