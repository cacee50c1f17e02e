-- White space taken off both ends of short texts, by one pattern and by two.
local n = tonumber(arg[1] or 60000)

local texts = {"", "x", "key = value", "a longer line of text", "tab\tinside"}
local padded = {}
for i = 1, n do
  padded[i] = string.rep(" ", i % 7) .. texts[i % 5 + 1] .. string.rep("\t", i % 3) .. string.rep(" ", i % 4)
end

local once, twice = 0, 0
for i, text in ipairs(padded) do
  once = once + #string.match(text, "^%s*(.-)%s*$")
  local left = string.gsub(text, "^%s+", "")
  local both = string.gsub(left, "%s+$", "")
  twice = twice + #both
end
print(once .. " " .. twice)
-- expect: 516000 516000
-- small: 200
