-- Product of two matrices kept as lists of rows: an element of an element in the innermost loop.
local n = tonumber(arg[1] or 150)

local function newMatrix(size, factor)
  local rows = {}
  for i = 1, size do
    local row = {}
    for j = 1, size do
      row[j] = (i * factor + j * 7) % 19 / 4
    end
    rows[i] = row
  end
  return rows
end

local function multiply(a, b, size)
  local product = {}
  for i = 1, size do
    local left, row = a[i], {}
    for j = 1, size do
      local sum = 0
      for k = 1, size do
        sum = sum + left[k] * b[k][j]
      end
      row[j] = sum
    end
    product[i] = row
  end
  return product
end

local product = multiply(newMatrix(n, 3), newMatrix(n, 5), n)
local sum = 0
for i = 1, n do
  sum = sum + product[i][i] * 16
  sum = sum + product[1][i] * 16
end
print(math.floor(sum))
-- expect: 3644670
-- small: 12
