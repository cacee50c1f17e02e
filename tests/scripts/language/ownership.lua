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
t = {}
function replaceTarget() t = {} return 1 end
t[replaceTarget()] = {}
print(t[1])  -- expect: nil

-- The tables and iterators of running loops.
seen, t = "", {{"x"}, {"y"}}
it = pairs(t)
for i, v in it do
  t, it = nil, nil
  seen = seen .. i .. v[1] .. " "
end
print(seen)  -- expect: 1x 2y 

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

-- Values that nobody keeps: of conditions, beyond the names of a declaration, in a long block.
function two() return {}, {} end
if two() then end
if {} then end
local one = two()
for i = 1, 3 do
  local a, b = i, {}, {}
  x = 1 x = 2 x = 3 x = 4 x = 5 x = 6 x = 7 x = 8 x = 9 x = 10 x = 11
  if i == 2 then break end
  x = 12 x = 13 x = 14 x = 15 x = 16 x = 17 x = 18 x = 19 x = 20 x = 21
end
print(x)  -- expect: 11

-- An error releases what its own frame holds, wherever that stands on the stack, also after an earlier error.
function fail() local a, b, c, d, e, f, g, h, i, j = {}, {}, {}, {}, {}, {}, {}, {}, {}, {} nothing.x = 1 end
function failTwice() pcall(error) local a, b, c, d, e, f, g, h, i, j = {}, {}, {}, {}, {}, {}, {}, {}, {}, {} nothing.x = 1 end
function down(depth, last) if depth == 0 then last() else down(depth - 1, last) end end
for depth = 1, 100 do
  if pcall(down, depth, fail) or pcall(down, depth, failTwice) then print(depth) end
end
