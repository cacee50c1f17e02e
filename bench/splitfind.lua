-- Lines split at a separator that is looked for as plain text.
local n = tonumber(arg[1] or 60000)

local function split(text, separator)
  local fields, from = {}, 1
  local first, last = string.find(text, separator, from, true)
  while first do
    fields[#fields + 1] = string.sub(text, from, first - 1)
    from = last + 1
    first, last = string.find(text, separator, from, true)
  end
  fields[#fields + 1] = string.sub(text, from)
  return fields
end

local seed, count, letters = 42, 0, 0
for i = 1, n do
  seed = seed * 16807 % 2147483647
  local fields = split(i .. ", name" .. seed % 100 .. ", " .. seed .. ", , true, last one", ", ")
  count = count + #fields
  letters = letters + #fields[2] + #fields[6]
end
print(count .. " " .. letters)
-- expect: 360000 833970
-- small: 150
