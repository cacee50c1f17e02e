-- Counting words that are built afresh each time, so that every lookup hashes a new string.
local n = tonumber(arg[1] or 900000)

local counts = {}
local seed = 42
for i = 1, n do
  seed = (seed * 3877 + 29573) % 139968
  local word = "word" .. seed % 5000
  local count = counts[word]
  if count then
    counts[word] = count + 1
  else
    counts[word] = 1
  end
end

local distinct, most, letters = 0, 0, 0
for word, count in pairs(counts) do
  distinct = distinct + 1
  letters = letters + #word * count
  if count > most then
    most = count
  end
end
print(distinct .. " " .. most .. " " .. letters)
-- expect: 5000 189 7000130
-- small: 6000
