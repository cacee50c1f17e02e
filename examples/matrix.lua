-- Matrices as lists of rows: printing, multiplying and raising to a power.
--
-- expect: product of a 2x3 and a 3x2 matrix
-- expect: 58 64
-- expect: 139 154
-- expect: its transpose
-- expect: 58 139
-- expect: 64 154
-- expect: tenth power
-- expect: 89 55
-- expect: 55 34
-- expect: half of it
-- expect: 44.5 27.5
-- expect: 27.5 17
-- expect: refused: cannot multiply 3 columns with 2 rows

local function show(title, matrix)
  print(title)
  for i, row in ipairs(matrix) do
    print(table.concat(row, " "))
  end
end

-- Builds a matrix by calling `element(row, column)` for each place.
local function newMatrix(rows, columns, element)
  local matrix = {}
  for i = 1, rows do
    local row = {}
    for j = 1, columns do
      row[j] = element(i, j)
    end
    matrix[i] = row
  end
  return matrix
end

local function multiply(a, b)
  if #a[1] ~= #b then
    error("cannot multiply " .. #a[1] .. " columns with " .. #b .. " rows")
  end
  return newMatrix(#a, #b[1], function(i, j)
    local sum = 0
    for k = 1, #b do
      sum = sum + a[i][k] * b[k][j]
    end
    return sum
  end)
end

local function transpose(a)
  return newMatrix(#a[1], #a, function(i, j)
    return a[j][i]
  end)
end

-- `/` always gives a float; a whole one prints without a point.
local function divide(a, divisor)
  return newMatrix(#a, #a[1], function(i, j)
    return a[i][j] / divisor
  end)
end

-- Squaring takes far fewer multiplications: a^10 is (a^5)^2, and a^5 is (a^2)^2 * a. The exponent
-- is a whole number from 1 up. `/` makes a float of it; a whole float equals the integer.
local function power(a, exponent)
  if exponent == 1 then
    return a
  end
  if exponent % 2 == 1 then
    return multiply(power(a, exponent - 1), a)
  end
  local root = power(a, exponent / 2)
  return multiply(root, root)
end

local wide = {{1, 2, 3}, {4, 5, 6}}
local tall = {{7, 8}, {9, 10}, {11, 12}}
local product = multiply(wide, tall)
show("product of a 2x3 and a 3x2 matrix", product)
show("its transpose", transpose(product))

local tenth = power({{1, 1}, {1, 0}}, 10)
show("tenth power", tenth)
show("half of it", divide(tenth, 2))

local ok, message = pcall(multiply, wide, wide)
print("refused: " .. message)
