n = (ARGV[0] || 60000).to_i

Instruction = Struct.new(:name, :value)

def run(program)
  stack = []
  pc = steps = 0
  memory = [0, 0, 0]
  loop do
    instruction = program[pc]
    name = instruction.name
    steps += 1
    pc += 1
    if name == "push"
      stack.push(instruction.value)
    elsif name == "load"
      stack.push(memory[instruction.value])
    elsif name == "store"
      memory[instruction.value] = stack.pop
    elsif name == "add"
      right = stack.pop
      stack[-1] += right
    elsif name == "modulo"
      right = stack.pop
      stack[-1] %= right
    elsif name == "less"
      right = stack.pop
      stack[-1] = stack[-1] < right
    elsif name == "jumpif"
      pc = instruction.value if stack.pop
    else
      return [memory[1], steps]
    end
  end
end

program = [
  ["load", 0], ["push", 1], ["add"], ["store", 0],
  ["load", 1], ["load", 0], ["add"], ["push", 1009],
  ["modulo"], ["store", 1],
  ["load", 0], ["push", n], ["less"], ["jumpif", 0],
  ["halt"]
].map { |name, value| Instruction.new(name, value) }
puts run(program).join(" ")
