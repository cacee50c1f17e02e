-- Sorting records by two of their fields, with a comparator.
local n = tonumber(arg[1] or 50000)

local people, seed = {}, 42
for i = 1, n do
  seed = seed * 16807 % 2147483647
  people[i] = {name = "name" .. seed % 500, age = seed % 80, id = i}
end

table.sort(people, function(a, b)
  if a.age ~= b.age then
    return a.age > b.age
  elseif a.name ~= b.name then
    return a.name < b.name
  end
  return a.id < b.id
end)

local checksum = 0
for i, person in ipairs(people) do
  checksum = (checksum * 31 + person.id) % 1000003
end
print(people[1].name .. " " .. people[n].name .. " " .. checksum)
-- expect: name119 name80 841667
-- small: 300
