-- Functions that take functions: map, filter and fold over lists, with closures as arguments.
local n = tonumber(arg[1] or 900)

local function map(list, change)
  local result = {}
  for i = 1, #list do
    result[i] = change(list[i])
  end
  return result
end

local function filter(list, accepts)
  local result = {}
  for i, item in ipairs(list) do
    if accepts(item) then
      result[#result + 1] = item
    end
  end
  return result
end

local function fold(list, start, join)
  local result = start
  for i = 1, #list do
    result = join(result, list[i])
  end
  return result
end

local numbers = {}
for i = 1, 1000 do
  numbers[i] = i
end
local total = 0
for round = 1, n do
  local changed = map(numbers, function(x) return x * round % 97 end)
  local chosen = filter(changed, function(x) return x % 3 == 1 end)
  total = total + fold(chosen, 0, function(sum, x) return sum + x end)
end
print(total)
-- expect: 13963712
-- small: 3
