-- A value in use stays alive when the variable or entry that held it changes.

-- A function that overwrites what holds it, with its self and its captured variables.
holder = {run = function(self)
  self.run = nil
  holder = nil
  return type(self), self.run
end}
print(holder:run())  -- expect: table	nil
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
t = {name = "le" .. "ft"}
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
t = {inner = {value = "inner"}}
function lose() t.inner = nil return "value" end
print(t.inner[lose()], t.inner)  -- expect: inner	nil
a, a = {"first"}, {"second"}
print(a[1])  -- expect: second

-- The tables and iterators of running loops.
t = {{"x"}, {"y"}}
for i, v in ipairs(t) do
  t[1], t[2] = nil, nil
  if v then print(i, v[1]) else print(i, v) end
end
-- expect: 1	x
-- expect: 2	nil
t = {{"x"}, {"y"}}
it = pairs(t)
for i, v in it do
  t, it = nil, nil
  print(i, v[1])
end
-- expect: 1	x
-- expect: 2	y

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

-- Errors drop half-built values and leave the rest usable.
log = {}
print(pcall(function()
  local kept = {"local"}
  log[1] = kept
  return {1, kept, {kept, error("in a constructor")}}
end))  -- expect: false	in a constructor
print(log[1][1])  -- expect: local
print(pcall(function() return show({name = "x"}, nil, error("in an argument")) end))  -- expect: false	in an argument
