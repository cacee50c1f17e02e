-- Functions share the variables of the scopes they were made in. Everything here keeps its functions in globals, so
-- that all of it is released in the end.
function counter(n)
  return function(step)
    n = n + (step or 1)
    return n
  end
end
c1, c2 = counter(0), counter(100)
print(c1(), c1(), c2(), c1(5), c2(-1))  -- expect: 1	2	101	7	100

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
local level = "chunk"
function readLevel() return level end
function writeLevel(v) level = v end
writeLevel("written")
print(level, readLevel())  -- expect: written	written

-- Loops: each iteration has its own variables.
readers = {}
writers = {}
for i = 1, 3 do
  readers[i] = function() return i end
  writers[i] = function(v) i = v end
end
writers[2]("changed")
print(readers[1](), readers[2](), readers[3]())  -- expect: 1	changed	3
for x = 0.5, 1 do readers.x = function() return x end end
for k, v in pairs({a = 1, b = 2}) do readers[k] = function() return k .. v end end
print(readers.x(), readers.a(), readers.b())  -- expect: 0.5	a1	b2
i = 0
while i < 3 do
  i = i + 1
  local captured = i * 10
  readers[i] = function()
    captured = captured + 1
    return captured
  end
end
print(readers[1](), readers[1](), readers[2](), readers[3](), readers[1]())  -- expect: 11	12	21	31	13

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

