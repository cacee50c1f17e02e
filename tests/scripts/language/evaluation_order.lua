-- Operands, arguments and fields are evaluated from left to right, each exactly once.
function note(value)
  print(value)
  return value
end
function pick(label, value)
  print(label)
  return value
end

print(note(1) + note(2) * note(3))
-- expect: 1
-- expect: 2
-- expect: 3
-- expect: 7
print(note(5) > note(4), note(4) >= note(5))
-- expect: 5
-- expect: 4
-- expect: 4
-- expect: 5
-- expect: true	false
print(note("a") .. note("b") == note("c"))
-- expect: a
-- expect: b
-- expect: c
-- expect: false

-- Types are checked only after both operands ran.
print(pcall(function() return pick("left", nil) + pick("right", 1) end))
-- expect: left
-- expect: right
-- expect: false	operator '+' expects numbers
print(pcall(function() return pick("left", {}) < pick("right", 1) end))
-- expect: left
-- expect: right
-- expect: false	ordered comparisons require matching numbers or strings
print(pcall(function() return pick("left", 1) / pick("right", 0) end))
-- expect: left
-- expect: right
-- expect: false	division by zero
print(pcall(function() return pick("left", "x") + error("right fails") end))
-- expect: left
-- expect: false	right fails

-- The left operand is the value it had before the right side ran.
n = 1
function bump()
  n = n + 10
  return n
end
print(n + bump(), n)  -- expect: 12	11
print(bump() + n, n)  -- expect: 42	21
print(n - bump(), n .. "," .. bump())  -- expect: -10	31,41
print(n == bump(), n < bump())  -- expect: false	true
function captured()
  local m = 1
  return m * 100 + (function() m = m + 1 return m end)() * 10 + m
end
print(captured())  -- expect: 122

-- Reading an entry: object, key, then the checks.
t = {k = "entry"}
print(pick("object", t)[note("k")])
-- expect: object
-- expect: k
-- expect: entry
print(pcall(function() return pick("object", nil)[note("key")] end))
-- expect: object
-- expect: key
-- expect: false	attempt to index a nil value
function drop()
  t = nil
  return "k"
end
print(t[drop()], t)  -- expect: entry	nil

-- A call: the callee, the arguments, and only then whether it can be called.
print(pick("callee", note)(pick("argument", "called")))
-- expect: callee
-- expect: argument
-- expect: called
-- expect: called
print(pcall(function() return pick("callee", nil)(note("first"), note("second")) end))
-- expect: callee
-- expect: first
-- expect: second
-- expect: false	attempt to call a nil value
print(pcall(function() missing(error("argument fails first")) end))  -- expect: false	argument fails first
function greet() return "old greet" end
function swap()
  greet = function() return "new greet" end
end
print(greet(swap()), greet())  -- expect: old greet	new greet

-- Looking up the callee's field comes before the arguments.
print(pcall(function() return no_table.field(note("never")) end))  -- expect: false	attempt to index a nil value
print(pcall(function() return io.no_such_function(note("argument")) end))
-- expect: argument
-- expect: false	attempt to call a nil value

-- A method call: the object once, the method, the arguments.
object = {name = "first"}
function object:show(text) return self.name .. " " .. text end
function replace(text)
  object = {name = "second"}
  return text
end
print(pick("object", object):show(pick("argument", "shown")))
-- expect: object
-- expect: argument
-- expect: first shown
print(object:show(replace("survives")), object.name)  -- expect: first survives	second
print(pcall(function() return pick("object", nil):m(note("never")) end))
-- expect: object
-- expect: false	attempt to index a nil value
print(pcall(function() return object:absent(note("argument")) end))
-- expect: argument
-- expect: false	attempt to call a nil value

-- Arguments keep the values they had when evaluated.
function pair(a, b) return a, b end
n = 1
print(pair(n, bump()))  -- expect: 1	11
print(pair(bump(), n))  -- expect: 21	21
print(n, bump(), n, bump())  -- expect: 21	31	31	41

-- The same in constructors and return lists.
function list() return n, bump(), n end
print(list())  -- expect: 41	51	51
c = {n, bump(), n, x = bump()}
print(c[1], c[2], c[3], c.x)  -- expect: 51	61	61	71
