-- Counting the words of a text, then sorting them by how often they occur.
local n = tonumber(arg[1] or 130)

local syllables = {"ba", "ke", "lo", "mi", "ru", "sa", "ti"}
local pieces, seed = {}, 42
for i = 1, 3000 do
  seed = seed * 16807 % 2147483647
  local word = syllables[seed % 7 + 1] .. syllables[seed % 5 + 1] .. syllables[seed % 3 + 1]
  pieces[i] = word
end
local text = table.concat(pieces, " ") .. "."

local distinct, checksum = 0, 0
for round = 1, n do
  local counts, list = {}, {}
  for word in string.gmatch(text, "%a+") do
    if not counts[word] then
      list[#list + 1] = word
    end
    counts[word] = (counts[word] or 0) + 1
  end
  table.sort(list, function(a, b)
    if counts[a] == counts[b] then
      return a < b
    end
    return counts[a] > counts[b]
  end)
  distinct = distinct + #list
  checksum = (checksum * 31 + counts[list[1]] + #list[2]) % 1000003
end
print(distinct .. " " .. checksum)
-- expect: 13650 867160
-- small: 1
