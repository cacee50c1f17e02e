var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function run(program) {
  var stack = [], pc = 0, steps = 0, right;
  var memory = [0, 0, 0];
  while (true) {
    var instruction = program[pc];
    var name = instruction.name;
    steps++;
    pc++;
    if (name === "push") {
      stack.push(instruction.value);
    } else if (name === "load") {
      stack.push(memory[instruction.value]);
    } else if (name === "store") {
      memory[instruction.value] = stack.pop();
    } else if (name === "add") {
      right = stack.pop();
      stack[stack.length - 1] += right;
    } else if (name === "modulo") {
      right = stack.pop();
      stack[stack.length - 1] %= right;
    } else if (name === "less") {
      right = stack.pop();
      stack[stack.length - 1] = stack[stack.length - 1] < right;
    } else if (name === "jumpif") {
      if (stack.pop()) {
        pc = instruction.value;
      }
    } else {
      return memory[1] + " " + steps;
    }
  }
}

function main(n) {
  var program = [
    {name: "load", value: 0}, {name: "push", value: 1}, {name: "add"}, {name: "store", value: 0},
    {name: "load", value: 1}, {name: "load", value: 0}, {name: "add"}, {name: "push", value: 1009},
    {name: "modulo"}, {name: "store", value: 1},
    {name: "load", value: 0}, {name: "push", value: n}, {name: "less"}, {name: "jumpif", value: 0},
    {name: "halt"}
  ];
  show(run(program));
}

main(Number(args[args.length - 1]) || 60000);
