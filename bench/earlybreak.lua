-- Loops that are left at once: is a table empty, which key is there, the first word of a line.
local n = tonumber(arg[1] or 40000)

local function isEmpty(t)
  for key in pairs(t) do
    return false
  end
  return true
end

local function firstWord(line)
  local first = ""
  for word in string.gmatch(line, "%a+") do
    first = word
    break
  end
  return first
end

local function position(list, wanted)
  for i, item in ipairs(list) do
    if item == wanted then
      return i
    end
  end
  return 0
end

local line, fields, items = "12: ", {}, {}
for i = 1, 60 do
  line = line .. "word" .. i .. " "
  fields["field" .. i] = i
  items[i] = i * 3 % 61
end

local empty, letters, positions = 0, 0, 0
for i = 1, n do
  if isEmpty(fields) then
    empty = empty + 1
  end
  if isEmpty({}) then
    empty = empty + 1
  end
  letters = letters + #firstWord(line)
  positions = positions + position(items, i % 10 + 1)
end
print(empty .. " " .. letters .. " " .. positions)
-- expect: 40000 160000 968000
-- small: 100
