-- Where locals are visible, and which variable a name means.
local x = "chunk"
function read() return x end
if true then
  local x = "if"
  x = x .. " assigned"
  print(x, read())  -- expect: if assigned	chunk
end
for x = 1, 2 do
  print(x)
  local x = "for"
  print(x)
end
-- expect: 1
-- expect: for
-- expect: 2
-- expect: for
function parameter(x)
  local y = x
  local x = "inner"
  return x, y
end
print(parameter("argument"))  -- expect: inner	argument
print(x, y)  -- expect: chunk	nil

-- The value of a declaration still sees the outer name.
local x = x .. "!"
print(x, read())  -- expect: chunk!	chunk
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

-- The condition of a loop does not see the locals of its body, which are new in every iteration.
n = 2
while n > 0 do
  local n, fresh = n - 10
  print(n, fresh)
  n, fresh = 100, {}
  if total == 5 then break end
  total = 5
end
-- expect: -8	nil
-- expect: -8	nil
print(n)  -- expect: 2

-- A name used before its declaration is the global, also inside a function.
function early() return late end
local late = "local"
print(early(), late)  -- expect: nil	local
