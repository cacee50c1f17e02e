-- A value in use stays alive when the variable or entry that held it changes.

-- A function that overwrites what holds it.
holder = {run = function(self)
  self.run = nil
  holder = nil
  return type(self), self.run
end}
print(holder:run())  -- expect: table	nil
function nested()
  nested = nil
  return (function() return "inner runs" end)()
end
print(nested())  -- expect: inner runs
function protectedSelf()
  protectedSelf = nil
  error("after removal")
end
print(pcall(protectedSelf))  -- expect: false	after removal

-- A closure that drops its own last reference still has its variables.
function keeper(value)
  keep = function()
    keep = nil
    value = value .. "!"
    return value
  end
end
keeper("captured")
print(keep(), keep)  -- expect: captured!	nil

-- Operands, arguments and objects dropped while the rest is evaluated.
t = {1, 2, 3, name = "t"}
function drop()
  t = nil
  return 2
end
print(t[drop()], t)  -- expect: 2	nil
t = {name = "left"}
function dropName()
  t = {name = "new"}
  return " right"
end
print(t.name .. dropName(), t.name)  -- expect: left right	new
function show(a, b) return a.name .. b .. tostring(t) end
function dropTable()
  t = nil
  return " kept "
end
print(show(t, dropTable()))  -- expect: new kept nil
s = "a" .. "b"
function dropString()
  s = nil
  return "c"
end
print(s .. dropString(), s)  -- expect: abc	nil
t = {}
t.first, t = "stored", nil
print(t)  -- expect: nil
t = {inner = {value = "inner"}}
function lose() t.inner = nil return "value" end
print(t.inner[lose()], t.inner)  -- expect: inner	nil
a, b = {"a"}, {"b"}
a, b = b, a
print(a[1], b[1])  -- expect: b	a
a, a = a, {"second"}
print(a[1])  -- expect: second

-- The tables of running loops and constructors.
t = {{"x"}, {"y"}}
for i, v in ipairs(t) do
  t[1], t[2] = nil, nil
  if v then print(i, v[1]) else print(i, v) end
end
-- expect: 1	x
-- expect: 2	nil
t = {{"x"}, {"y"}}
for i, v in pairs(t) do
  t = {}
  print(i, v[1])
end
-- expect: 1	x
-- expect: 2	y
for i = 1, 2 do
  local row = {i}
  t = row
  row = nil
  print(t[1])
  t = nil
end
-- expect: 1
-- expect: 2

-- Values returned out of the scopes that owned them.
function build()
  local outer = {}
  for i = 1, 3 do
    local inner = {i}
    outer[i] = inner
    if i == 2 then
      local last = {inner, outer}
      return last, last[1], last[2][1]
    end
  end
end
x, y, z = build()
print(x[1] == y, x[2][1] == z, #x[2], y[1], z[1])  -- expect: true	true	2	2	1
function parameters(a, b)
  a, b = b, a
  return b, a
end
print(parameters({1}, {2}))  -- expect: {1}	{2}
function first(list) return list[1] end
print(first({{"kept"}})[1], first(first({{{"deep"}}}))[1])  -- expect: kept	deep

-- A table removed from itself, and cleared while in use.
t = {}
t.self = t
print(t.self.self == t)  -- expect: true
t.self = nil
function clear(list)
  for k in pairs(list) do list[k] = nil end
  return list
end
print(#clear({1, 2, {3}, x = {}}))  -- expect: 0

-- Errors drop half-built values and leave the rest usable.
log = {}
print(pcall(function()
  local kept = {"local"}
  log[1] = kept
  return {1, kept, {kept, error("in a constructor")}}
end))  -- expect: false	in a constructor
print(log[1][1])  -- expect: local
print(pcall(function() return show({name = "x"}, nil, error("in an argument")) end))  -- expect: false	in an argument
