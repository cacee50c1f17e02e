-- Lines made by string.format from numbers and texts.
local n = tonumber(arg[1] or 300000)

local names, length = {"first", "second", "third"}, 0
for i = 1, n do
  local line = string.format("%d: %s has %d of %d (%s)", i, names[i % 3 + 1], i % 77, n, i % 2 == 0)
  length = length + #line
end
print(length)
-- expect: 11199927
-- small: 300
