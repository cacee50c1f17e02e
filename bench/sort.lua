-- Sorting 200,000 numbers downwards by a comparator: calls from the library back into the script.
local n = tonumber(arg[1] or 200000)

local values = {}
local seed = 42
for i = 1, n do
  seed = (seed * 16807) % 2147483647
  values[i] = seed % 1000000
end

table.sort(values, function(a, b)
  return a > b
end)

local checksum = 0
for i = 1, #values, 1000 do
  checksum = (checksum * 31 + values[i]) % 1000003
end
print(values[1] .. " " .. values[#values] .. " " .. checksum)
-- expect: 999985 5 706025
-- small: 400
