-- Sorting in the default order: 300,000 numbers, then 100,000 strings.
local n = tonumber(arg[1] or 300000)

local numbers, names = {}, {}
local seed = 42
for i = 1, n do
  seed = (seed * 16807) % 2147483647
  numbers[i] = seed % 1000000
end
for i = 1, n / 3 do
  seed = (seed * 16807) % 2147483647
  names[i] = "name" .. seed % 100000
end

table.sort(numbers)
table.sort(names)

local checksum = 0
for i = 1, #numbers, 1000 do
  checksum = (checksum * 31 + numbers[i]) % 1000003
end
for i = 1, #names, 1000 do
  checksum = (checksum * 31 + #names[i]) % 1000003
end
print(numbers[1] .. " " .. numbers[#numbers] .. " " .. names[1] .. " " .. names[#names] .. " " ..
    names[math.floor(n / 6)] .. " " .. checksum)
-- expect: 1 999992 name0 name99999 name55191 608854
-- small: 600
