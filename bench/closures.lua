-- Counters kept in closures: three million calls of long-lived ones, then many short-lived ones.
local n = tonumber(arg[1] or 1500000)

local function newCounter(step)
  local count = 0
  return function()
    count = count + step
    return count
  end
end

local byOne, byThree = newCounter(1), newCounter(3)
local eighths = 0
for i = 1, n do
  if (byOne() + byThree()) % 8 == 0 then
    eighths = eighths + 1
  end
end

local total = 0
for i = 1, n / 6 do
  local counter = newCounter(i % 10)
  counter()
  counter()
  total = total + counter()
end
print(byOne() .. " " .. byThree() .. " " .. eighths .. " " .. total)
-- expect: 1500001 4500003 750000 3375000
-- small: 3000
