-- A to-do list kept in a file. Several commands may follow each other:
--
--   tarvellua examples/todo.lua FILE list
--   tarvellua examples/todo.lua FILE add "buy milk" add "call Ada" done 1
--   tarvellua examples/todo.lua FILE clear
--
-- args: {tmp}/todo.txt add "buy milk" add "call Ada" add "mend the net" done 2 list clear list
-- expect: 1 [ ] buy milk
-- expect: 2 [x] call Ada
-- expect: 3 [ ] mend the net
-- expect: 2 of 3 to do
-- expect: nothing to do

local function quit(message)
  io.stderr:write("todo: " .. message .. "\n")
  os.exit(2)
end

-- One task per line: "[ ] " or "[x] ", then its text, which starts at the fifth byte. A file that
-- is not there is an empty list.
local function load(path)
  local tasks = {}
  local file = io.open(path)
  if file then
    for line in file:read("*a"):gmatch("[^\n]+") do
      tasks[#tasks + 1] = {done = line:sub(1, 3) == "[x]", text = line:sub(5)}
    end
    file:close()
  end
  return tasks
end

-- There is no conditional operator; `a and b or c` is how one writes it, provided b is never false.
local function format(task)
  return (task.done and "[x] " or "[ ] ") .. task.text
end

local function save(path, tasks)
  local file, reason = io.open(path, "w")
  if not file then
    quit(reason)
  end
  for i, task in ipairs(tasks) do
    file:write(format(task), "\n")
  end
  file:close()
end

-- Functions are values like any other: this table finds them by the word on the command line.
local commands = {}
local takesOperand = {add = true, done = true}  -- the commands that use the word after them

function commands.add(tasks, text)
  tasks[#tasks + 1] = {done = false, text = text}
end

-- The word from the command line is a string, so it is compared with the printed numbers.
function commands.done(tasks, number)
  for i, task in ipairs(tasks) do
    if tostring(i) == number then
      task.done = true
      return
    end
  end
  quit("there is no task " .. number)
end

function commands.list(tasks)
  local open = 0
  for i, task in ipairs(tasks) do
    print(i .. " " .. format(task))
    if not task.done then
      open = open + 1
    end
  end
  if open == 0 then
    print("nothing to do")
  else
    print(open .. " of " .. #tasks .. " to do")
  end
end

function commands.clear(tasks)
  while #tasks > 0 do
    table.remove(tasks)
  end
end

local path = arg[1]
if not path or not arg[2] then
  quit("usage: tarvellua examples/todo.lua FILE (add TEXT | done NUMBER | list | clear)...")
end

local tasks = load(path)
local position = 2
while arg[position] do
  local name = arg[position]
  local command = commands[name]
  if not command then
    quit("unknown command " .. name)
  end
  local operand
  if takesOperand[name] then
    position = position + 1
    operand = arg[position]
    if not operand then
      quit(name .. " needs one more word")
    end
  end
  command(tasks, operand)
  position = position + 1
end
save(path, tasks)
