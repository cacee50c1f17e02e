-- Texts that are turned into numbers and back: integers, decimals, and what is none.
local n = tonumber(arg[1] or 400000)

local texts = {}
for i = 1, 1000 do
  texts[i] = tostring(i * 7919 % 100000)
  if i % 3 == 0 then
    texts[i] = texts[i] .. "." .. i % 4 * 25
  elseif i % 10 == 0 then
    texts[i] = texts[i] .. "x"
  end
end

local sum, refused, letters = 0, 0, 0
for i = 1, n do
  local number = tonumber(texts[i % 1000 + 1])
  if number then
    sum = sum + number
  else
    refused = refused + 1
  end
  letters = letters + #tostring(i)
end
print(math.floor(sum * 100 + 0.5) .. " " .. refused .. " " .. letters)
-- expect: 1857075810000 26800 2288895
-- small: 1000
