-- An interpreter for a small stack machine: a loop over instructions with a ladder of comparisons.
local n = tonumber(arg[1] or 60000)

local function run(program)
  local stack, top, pc, steps = {}, 0, 1, 0
  local memory = {0, 0, 0}
  while true do
    local instruction = program[pc]
    local name = instruction.name
    steps = steps + 1
    pc = pc + 1
    if name == "push" then
      top = top + 1
      stack[top] = instruction.value
    elseif name == "load" then
      top = top + 1
      stack[top] = memory[instruction.value]
    elseif name == "store" then
      memory[instruction.value] = stack[top]
      top = top - 1
    elseif name == "add" then
      stack[top - 1] = stack[top - 1] + stack[top]
      top = top - 1
    elseif name == "modulo" then
      stack[top - 1] = stack[top - 1] % stack[top]
      top = top - 1
    elseif name == "less" then
      stack[top - 1] = stack[top - 1] < stack[top]
      top = top - 1
    elseif name == "jumpif" then
      if stack[top] then
        pc = instruction.value
      end
      top = top - 1
    else
      return memory[2], steps
    end
  end
end

local program = {
  {name = "load", value = 1}, {name = "push", value = 1}, {name = "add"}, {name = "store", value = 1},
  {name = "load", value = 2}, {name = "load", value = 1}, {name = "add"}, {name = "push", value = 1009},
  {name = "modulo"}, {name = "store", value = 2},
  {name = "load", value = 1}, {name = "push", value = n}, {name = "less"}, {name = "jumpif", value = 1},
  {name = "halt"},
}
local result, steps = run(program)
print(result .. " " .. steps)
-- expect: 234 840001
-- small: 300
