-- All orders of a short list, by swapping elements in place.
local n = tonumber(arg[1] or 9)
local checksum, orders = 0, 0

local function permute(items, from, size)
  if from == size then
    orders = orders + 1
    checksum = (checksum * 3 + items[1] * items[size]) % 1000003
    return
  end
  for i = from, size do
    items[from], items[i] = items[i], items[from]
    permute(items, from + 1, size)
    items[from], items[i] = items[i], items[from]
  end
end

local items = {}
for i = 1, n do
  items[i] = i
end
permute(items, 1, n)
print(orders .. " " .. checksum)
-- expect: 362880 868137
-- small: 6
