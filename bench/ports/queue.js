var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function main(n) {
  var queue = [1];
  var head = 0;
  var sum = 0, longest = 0;
  while (head < queue.length) {
    var node = queue[head];
    queue[head] = undefined;
    head++;
    sum = (sum * 7 + node) % 1000003;
    if (2 * node <= n) {
      queue.push(2 * node);
    }
    if (2 * node + 1 <= n) {
      queue.push(2 * node + 1);
    }
    if (queue.length - 1 - head > longest) {
      longest = queue.length - 1 - head;
    }
  }
  show(sum + " " + longest);
}

main(Number(args[args.length - 1]) || 1000000);
