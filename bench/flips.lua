-- Pancake flips: reversing the front of short lists, for every order of n numbers.
local n = tonumber(arg[1] or 8)

local function flipsOf(order, size)
  local list = {}
  for i = 1, size do
    list[i] = order[i]
  end
  local flips, first = 0, list[1]
  while first ~= 1 do
    local low, high = 1, first
    while low < high do
      list[low], list[high] = list[high], list[low]
      low = low + 1
      high = high - 1
    end
    flips = flips + 1
    first = list[1]
  end
  return flips
end

local order, most, total = {}, 0, 0
local function visit(from)
  if from > n then
    local flips = flipsOf(order, n)
    total = total + flips
    if flips > most then
      most = flips
    end
    return
  end
  for i = from, n do
    order[from], order[i] = order[i], order[from]
    visit(from + 1)
    order[from], order[i] = order[i], order[from]
  end
end
for i = 1, n do
  order[i] = i
end
visit(1)
print(most .. " " .. total)
-- expect: 22 180260
-- small: 5
