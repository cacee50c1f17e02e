var show = typeof print === "function" ? print : console.log;

function fib(n) {
  if (n < 2) {
    return n;
  }
  return fib(n - 1) + fib(n - 2);
}

show(fib(32));
