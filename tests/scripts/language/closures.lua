-- Functions share the variables of the scopes they were made in. Everything here keeps its
-- functions in globals, so that all of it is released in the end.

-- A counter, and two independent ones.
function counter(start)
  local n = start
  return function(step)
    n = n + (step or 1)
    return n
  end
end
c1 = counter(0)
c2 = counter(100)
print(c1(), c1(), c2(), c1(5), c2(-1))  -- expect: 1	2	101	7	100

-- Functions made in one call share its variables; those of another call do not.
function account(balance)
  return {
    deposit = function(amount) balance = balance + amount end,
    withdraw = function(amount) balance = balance - amount end,
    balance = function() return balance end
  }
end
first = account(10)
second = account(20)
first.deposit(5)
first.withdraw(1)
second.deposit(100)
print(first.balance(), second.balance())  -- expect: 14	120

-- Parameters are variables like any other.
function adder(a) return function(b) return function(c) return a + b + c end end end
add12 = adder(1)(2)
print(add12(3), add12(10), adder(10)(20)(30))  -- expect: 6	13	60
function setter(value)
  return function(new)
    local old = value
    value = new
    return old
  end
end
set = setter("a")
print(set("b"), set("c"), set("d"))  -- expect: a	b	c

-- Changes made by the scope after the function was made are seen, and the other way round.
function both()
  local x = 1
  get = function() return x end
  put = function(v) x = v end
  x = 2
  local before = get()
  put(3)
  return before, x, get()
end
print(both())  -- expect: 2	3	3
put("later")
print(get())  -- expect: later

-- The same at the level of the chunk.
local level = "chunk"
function readLevel() return level end
function writeLevel(v) level = v end
writeLevel("written")
print(level, readLevel())  -- expect: written	written
level = "assigned"
print(readLevel())  -- expect: assigned

-- Loops: each iteration has its own variables.
readers = {}
writers = {}
for i = 1, 3 do
  readers[i] = function() return i end
  writers[i] = function(v) i = v end
end
writers[2]("changed")
print(readers[1](), readers[2](), readers[3]())  -- expect: 1	changed	3
for k, v in pairs({a = 1, b = 2}) do
  readers[k] = function() return k .. v end
end
print(readers.a(), readers.b())  -- expect: a1	b2
for i = 1, 2 do
  local seen = "iteration " .. i
  for j = 1, 2 do
    readers[i * 10 + j] = function() return seen .. "." .. j end
  end
  seen = seen .. "!"
end
print(readers[11](), readers[12](), readers[21](), readers[22]())
-- expect: iteration 1!.1	iteration 1!.2	iteration 2!.1	iteration 2!.2
for x = 0.5, 1 do readers.x = function() return x end end
print(readers.x())  -- expect: 0.5

-- A loop variable assigned in the body is the captured one, the iteration goes on undisturbed.
for i = 1, 2 do
  readers[i] = function() return i end
  i = i + 100
end
print(readers[1](), readers[2]())  -- expect: 101	102

-- Branches have scopes too.
for i = 1, 3 do
  if i == 2 then
    local only = "second"
    only_reader = function() return only, i end
  else
    local only = "other"
    other_reader = function() return only, i end
  end
end
print(only_reader())  -- expect: second	2
print(other_reader())  -- expect: other	3

-- A shadowed name is another variable.
function shadows()
  local x = "first"
  old_x = function() return x end
  local x = "second"
  new_x = function() return x end
  x = "third"
  return old_x(), new_x()
end
print(shadows())  -- expect: first	third
function parameterShadow(x)
  shadow_reader = function() return x end
  local x = "local"
  return shadow_reader(), x
end
print(parameterShadow("parameter"))  -- expect: parameter	local

-- Several levels of functions and blocks between the variable and its use.
function levels(a)
  local b = "b"
  for i = 1, 1 do
    if true then
      local c = "c"
      while true do
        deep = function(d)
          return (function(e)
            b = b .. "+"
            return a .. b .. c .. d .. e .. i
          end)("e")
        end
        break
      end
    end
  end
  return b
end
print(levels("a"), deep("d"), deep("d"))  -- expect: b	ab+cde1	ab++cde1

-- Each activation of a recursive function has its own captured variables.
stack = {}
function recurse(n)
  local mine = n * n
  stack[n] = function()
    mine = mine + 1
    return mine
  end
  if n > 1 then recurse(n - 1) end
  return mine
end
print(recurse(3), stack[3](), stack[3](), stack[2](), stack[1]())  -- expect: 9	10	11	5	2

-- Higher order functions with state passed along.
function map(list, f)
  local result = {}
  for i, v in ipairs(list) do result[i] = f(v, i) end
  return result
end
factor = 10
print(map({1, 2, 3}, function(v, i) return v * factor + i end))  -- expect: {11, 22, 33}
function compose(f, g) return function(x) return f(g(x)) end end
print(compose(function(x) return x + 1 end, function(x) return x * 2 end)(5))  -- expect: 11
pipeline = function(x) return x end
for i = 1, 3 do pipeline = compose(pipeline, function(x) return x .. i end) end
print(pipeline("x"))  -- expect: x321

-- Captured nil, and declared without a value.
function lazy()
  local value
  return function()
    if value == nil then
      value = "computed"
      return "first"
    end
    return value
  end
end
get = lazy()
print(get(), get())  -- expect: first	computed

-- A function called where it is written.
print((function(a, b) return b, a end)(1, 2))  -- expect: 2	1
local sum = 0
for i = 1, 3 do (function(v) sum = sum + v end)(i) end
print(sum)  -- expect: 6
