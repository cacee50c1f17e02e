-- A matrix given by a formula, multiplied with vectors: calls of a small function of floats.
local n = tonumber(arg[1] or 150)

local function element(i, j)
  return 1 / ((i + j) * (i + j + 1) / 2 + i + 1)
end

local function multiply(vector, size)
  local result = {}
  for i = 0, size - 1 do
    local sum = 0
    for j = 0, size - 1 do
      sum = sum + element(i, j) * vector[j + 1]
    end
    result[i + 1] = sum
  end
  return result
end

local vector = {}
for i = 1, n do
  vector[i] = 1
end
for round = 1, 40 do
  vector = multiply(vector, n)
  local largest = vector[1]
  for i = 1, n do
    vector[i] = vector[i] / largest
  end
end
local sum = 0
for i = 1, n do
  sum = sum + vector[i]
end
print(math.floor(sum * 100000000 + 0.5))
-- expect: 217966263
-- small: 6
