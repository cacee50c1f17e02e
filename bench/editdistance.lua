-- Edit distances between words: rows of a table of numbers, math.min, single characters.
local n = tonumber(arg[1] or 6000)

local function distance(a, b)
  local previous = {}
  for j = 0, #b do
    previous[j + 1] = j
  end
  for i = 1, #a do
    local current, letter = {i}, string.sub(a, i, i)
    for j = 1, #b do
      local cost = 1
      if string.sub(b, j, j) == letter then
        cost = 0
      end
      current[j + 1] = math.min(previous[j + 1] + 1, current[j] + 1, previous[j] + cost)
    end
    previous = current
  end
  return previous[#b + 1]
end

local words = {"kitten", "sitting", "saturday", "sunday", "intention", "execution", "apple"}
local total = 0
for i = 1, n do
  total = total + distance(words[i % 7 + 1], words[i % 5 + 1])
end
print(total)
-- expect: 32047
-- small: 40
