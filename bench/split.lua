-- Lines split at commas and at white space, by patterns that match the fields.
local n = tonumber(arg[1] or 60000)

local function split(text, pattern)
  local fields = {}
  for field in string.gmatch(text, pattern) do
    fields[#fields + 1] = field
  end
  return fields
end

local seed, count, letters = 42, 0, 0
for i = 1, n do
  seed = seed * 16807 % 2147483647
  local fields = split(i .. ",name" .. seed % 100 .. "," .. seed .. ",true,last one", "[^,]+")
  local words = split("  the " .. seed % 100 .. " words of\ta line ", "%S+")
  count = count + #fields + #words
  letters = letters + #fields[2] + #words[2]
end
print(count .. " " .. letters)
-- expect: 660000 467940
-- small: 150
