-- Linked lists: built, reversed in place, walked and dropped.
local n = tonumber(arg[1] or 100)

local sum = 0
for round = 1, n do
  local first = nil
  for i = 1, 5000 do
    first = {value = i, rest = first}
  end
  local reversed = nil
  while first do
    local rest = first.rest
    first.rest = reversed
    reversed = first
    first = rest
  end
  local node, place = reversed, 0
  while node do
    place = place + 1
    sum = (sum + node.value * place) % 1000003
    node = node.rest
  end
end
print(sum)
-- expect: 246288
-- small: 1
