-- Where locals are visible, and which variable a name means.
local x = "chunk"
function read() return x end
print(x, read())  -- expect: chunk	chunk

-- Blocks of if, else, while, for and functions have scopes of their own.
if true then
  local x = "if"
  print(x)  -- expect: if
  x = "if assigned"
  print(x)  -- expect: if assigned
end
print(x)  -- expect: chunk
if false then
  local unused = 1
elseif true then
  local x = "elseif"
  print(x)  -- expect: elseif
end
if false then
  local x = "then"
else
  local x = "else"
  print(x)  -- expect: else
end
local count = 0
while count < 2 do
  local x = "while " .. count
  count = count + 1
  print(x)
end
-- expect: while 0
-- expect: while 1
for x = 1, 2 do
  print(x)
  local x = "for"
  print(x)
end
-- expect: 1
-- expect: for
-- expect: 2
-- expect: for
for x, y in ipairs({"item"}) do print(x, y) end  -- expect: 1	item
function parameter(x)
  local y = x
  local x = "inner"
  return x, y
end
print(parameter("argument"))  -- expect: inner	argument
print(x, y)  -- expect: chunk	nil

-- The value of a declaration still sees the outer name.
local x = x .. "!"
print(x)  -- expect: chunk!
print(read())  -- expect: chunk
x = "second"
print(x, read())  -- expect: second	chunk

-- Assigning a local of an enclosing block changes that one.
local total = 0
for i = 1, 3 do
  if i ~= 2 then
    total = total + i
    local total = 100
    total = total + 1
  end
end
print(total)  -- expect: 4

-- The condition of a loop does not see the locals of its body.
n = 3
while n > 0 do
  local n = n - 1
  print(n)
  break
end
-- expect: 2
print(n)  -- expect: 3

-- A loop variable and a body local are new in every iteration.
for i = 1, 2 do
  local seen
  print(i, seen)
  seen = i
end
-- expect: 1	nil
-- expect: 2	nil
count = 0
while count < 2 do
  local a, b
  print(a, b)
  a, b = count, {}
  count = count + 1
end
-- expect: nil	nil
-- expect: nil	nil
for i = 1, 2 do
  if i > 0 then
    local fresh
    print(fresh)
    fresh = "used"
  end
end
-- expect: nil
-- expect: nil

-- A name used before its declaration is the global, also inside a function.
function early() return late end
local late = "local"
print(early(), late)  -- expect: nil	local
late, early_value = "changed", early()
print(late, early_value)  -- expect: changed	nil
late_global = "global"
function use() return late_global end
local late_global = "shadowed later"
print(use(), late_global)  -- expect: global	shadowed later

-- A local shadows a library name only in its block.
if true then
  local print = tostring
  shadow = print(12)
end
print(shadow, type(shadow))  -- expect: 12	string

-- Functions see globals at the time of the call.
function later() return defined_later end
defined_later = "now"
print(later())  -- expect: now

-- Recursion: every activation has its own locals.
function digits(n)
  local last = n % 10
  if n >= 10 then
    local rest = digits((n - last) / 10)
    return rest .. "-" .. last
  end
  return "" .. last
end
print(digits(4096))  -- expect: 4-0-9-6
