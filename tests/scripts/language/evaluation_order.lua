-- Operands, arguments and fields are evaluated from left to right, each exactly once.
trace = ""
function pick(label, value)
  trace = trace .. label .. " "
  return value
end
-- What ran, and how it ended.
function run(f)
  trace = ""
  local ok, result = pcall(f)
  return trace, result
end

-- Types are checked only after both operands ran.
print(run(function() return pick("left", nil) + pick("right", 1) end))
-- expect: left right 	operator '+' expects numbers
print(run(function() return pick("left", "x") - pick("right", 1) end))
-- expect: left right 	operator '-' expects numbers
print(run(function() return pick("left", {}) < pick("right", 1) end))
-- expect: left right 	ordered comparisons require matching numbers or strings
print(run(function() return pick("left", {}) < error("right fails") end))  -- expect: left 	right fails

-- The left operand is the value it had before the right side ran.
n = 1
function bump()
  n = n + 10
  return n
end
print(n + bump(), n)  -- expect: 12	11
print(bump() + n, n)  -- expect: 42	21
print(n - bump(), n .. "," .. bump())  -- expect: -10	31,41
function captured()
  local m = 1
  return m * 100 + (function() m = m + 1 return m end)() * 10 + m
end
print(captured())  -- expect: 122

-- Reading an entry: object, key, then the checks. A call: the callee, the arguments, and only then whether it can be
-- called; looking up the callee's field comes before the arguments.
print(run(function() return pick("object", nil)[pick("key")] end))
-- expect: object key 	attempt to index a nil value
print(run(function() return pick("callee", nil)(pick("first"), pick("second")) end))
-- expect: callee first second 	attempt to call a nil value
print(run(function() return no_table.field(pick("never")) end))  -- expect: 	attempt to index a nil value
print(run(function() return io.no_such_function(pick("argument")) end))
-- expect: argument 	attempt to call a nil value

-- A method call: the object once, the method, the arguments.
object = {name = "first"}
function object:show(text) return self.name .. " " .. text end
function replace(text)
  object = {name = "second"}
  return text
end
print(run(function() return pick("object", object):show(replace("survives")) end))  -- expect: object 	first survives
print(run(function() return pick("object", nil):m(pick("never")) end))
-- expect: object 	attempt to index a nil value
print(run(function() return object:absent(pick("argument")) end))
-- expect: argument 	attempt to call a nil value

-- Arguments, returned values and fields keep the values they had when evaluated.
function pair(a, b) return a, b end
function list() return n, bump(), n end
n = 1
print(pair(n, bump()))  -- expect: 1	11
print(list())  -- expect: 11	21	21
c = {n, bump(), n, x = bump()}
print(c[1], c[2], c[3], c.x)  -- expect: 21	31	31	41

-- Fields and products of locals keep to that order too, whatever they turn out to be.
record = {v = 1, text = "x"}
function change()
  record.v = 100
  return 5
end
print(run(function()
  local r = record
  return r.v + change()
end))
-- expect: 	6
print(run(function()
  local r, a, b = record, 2, nil
  return r.text - a * b
end))
-- expect: 	operator '*' expects numbers
print(run(function()
  local a, b, none = "a", 2, nil
  return a * b < none.v
end))
-- expect: 	operator '*' expects numbers
print(run(function()
  local none = nil
  return none.v * pick("right", 1)
end))
-- expect: 	attempt to index a nil value
print(run(function()
  local none = nil
  return pick("left", 1) / none.v
end))
-- expect: left 	attempt to index a nil value

-- One piece of code sees records of different shapes.
function sum(r, s)
  return r.v + s.v * 2
end
print(sum({v = 1}, {u = 0, v = 2}), sum({u = 0, v = 1.5}, {v = 0.25}), sum({v = 3}, {v = 4}))
-- expect: 5	2	11
print(run(function() return sum({v = 1}, {u = 0}) end))
-- expect: 	operator '*' expects numbers
print(run(function() return sum({v = "1"}, {v = 2}) end))
-- expect: 	operator '+' expects numbers
