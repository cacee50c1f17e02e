-- Joining lists of texts and numbers: many short ones, and some long ones.
local n = tonumber(arg[1] or 120000)

local length = 0
for i = 1, n do
  length = length + #table.concat({"id", i, "name", i % 10, "end"}, ";")
end
local list = {}
for i = 1, 1000 do
  list[i] = "item" .. i
end
for round = 1, n / 50 do
  length = length + #table.concat(list, ", ")
end
print(length)
-- expect: 23627295
-- small: 300
