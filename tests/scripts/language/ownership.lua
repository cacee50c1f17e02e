-- A value in use stays alive when the variable or entry that held it changes.
holder = {run = function(self)
  self.run = nil
  holder = nil
  return type(self), self.run
end}
print(holder:run())  -- expect: table	nil
t = {1, 2, 3}
function drop()
  t = nil
  return 2
end
print(t[drop()], t)  -- expect: 2	nil
t = {name = "le" .. "ft"}
function replace()
  t = {name = "new"}
  return " right"
end
print(t.name .. replace(), t.name)  -- expect: left right	new
function show(a, b) return a.name .. b .. tostring(t) end
print(show(t, drop()))  -- expect: new2nil
t = {inner = {value = "inner"}}
function lose() t.inner = nil return "value" end
print(t.inner[lose()], t.inner)  -- expect: inner	nil

-- The tables and iterators of running loops.
seen, t = "", {{"x"}, {"y"}}
for i, v in ipairs(t) do
  t[1], t[2] = nil, nil
  seen = seen .. i .. tostring(v and v[1]) .. " "
end
t = {{"x"}, {"y"}}
it = pairs(t)
for i, v in it do
  t, it = nil, nil
  seen = seen .. i .. v[1] .. " "
end
print(seen)  -- expect: 1x 2nil 1x 2y 

-- A key that no table takes is released once, also where its element is only needed for a moment.
keep, t = {value = "mine"}, {}
holder = {keep}
for i = 1, 3 do
  pcall(function() return t[holder[1]].x end)
  pcall(function() return #t[holder[1]] end)
  pcall(function() return t[holder[1]][1] end)
end
other = {value = "other's"}
print(keep.value, keep == other)  -- expect: mine	false
-- Long chains of tables and of functions are released without running out of stack.
list = nil
function wrap(inner) return function() return inner end end
for i = 1, 300000 do list = {next = {wrap(list)}} end
list = nil
