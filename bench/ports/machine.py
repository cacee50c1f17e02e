import sys


class Instruction:
    __slots__ = ("name", "value")

    def __init__(self, name, value=None):
        self.name = name
        self.value = value


def run(program):
    stack, pc, steps = [], 0, 0
    memory = [0, 0, 0]
    while True:
        instruction = program[pc]
        name = instruction.name
        steps += 1
        pc += 1
        if name == "push":
            stack.append(instruction.value)
        elif name == "load":
            stack.append(memory[instruction.value])
        elif name == "store":
            memory[instruction.value] = stack.pop()
        elif name == "add":
            right = stack.pop()
            stack[-1] += right
        elif name == "modulo":
            right = stack.pop()
            stack[-1] %= right
        elif name == "less":
            right = stack.pop()
            stack[-1] = stack[-1] < right
        elif name == "jumpif":
            if stack.pop():
                pc = instruction.value
        else:
            return memory[1], steps


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 60000
    program = [
        Instruction("load", 0), Instruction("push", 1), Instruction("add"), Instruction("store", 0),
        Instruction("load", 1), Instruction("load", 0), Instruction("add"), Instruction("push", 1009),
        Instruction("modulo"), Instruction("store", 1),
        Instruction("load", 0), Instruction("push", n), Instruction("less"), Instruction("jumpif", 0),
        Instruction("halt"),
    ]
    print(*run(program))


main()
