-- Where locals are visible, and which variable a name means.
local x = "chunk"
function read() return x end
if true then
  local x = "if"
  x = x .. " assigned"
  print(x, read())  -- expect: if assigned	chunk
end
for x = 1, 1 do
  local outer = x
  local x = "for"
  print(outer, x, y)  -- expect: 1	for	nil
end
function parameter(x)
  local y = x
  local x = "inner"
  return x, y
end
print(parameter("argument"))  -- expect: inner	argument
-- The value of a declaration still sees the outer name; the functions made before keep theirs.
local x = x .. "!"
x = x .. "?"
print(x, read())  -- expect: chunk!?	chunk
-- The locals of a body are new in every iteration, and its loop's condition does not see them.
n, seen = 2, {}
while n > 0 do
  local n, fresh = #seen
  seen[n + 1] = tostring(fresh)
  n, fresh = 100, {}
  if #seen == 2 then break end
end
print(seen)  -- expect: {nil, nil}
-- A name used before its declaration is the global, also inside a function.
function early() return late end
local late = "local"
print(early(), late)  -- expect: nil	local
if true then local x, y = 1, 2 end
local a, b
print(a, b)  -- expect: nil	nil
