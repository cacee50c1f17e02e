-- Every way to fill a square of four by four so that no row, column or box repeats a symbol: a search
-- that tests three flags at each step.
local n = tonumber(arg[1] or 60)
local size = 4

local function newFlags()
  local flags = {}
  for i = 1, size do
    local row = {}
    for j = 1, size do
      row[j] = false
    end
    flags[i] = row
  end
  return flags
end

local rows, columns, boxes = newFlags(), newFlags(), newFlags()
local boxOf = {{1, 1, 2, 2}, {1, 1, 2, 2}, {3, 3, 4, 4}, {3, 3, 4, 4}}
local steps = 0

local function fill(row, column)
  if column > size then
    row, column = row + 1, 1
    if row > size then
      return 1
    end
  end
  local found = 0
  local inRow, inColumn, inBox = rows[row], columns[column], boxes[boxOf[row][column]]
  for symbol = 1, size do
    steps = steps + 1
    if not inRow[symbol] and not inColumn[symbol] and not inBox[symbol] then
      inRow[symbol] = true
      inColumn[symbol] = true
      inBox[symbol] = true
      found = found + fill(row, column + 1)
      inRow[symbol] = false
      inColumn[symbol] = false
      inBox[symbol] = false
    end
  end
  return found
end

local found = 0
for round = 1, n do
  found = found + fill(1, 1)
end
print(found .. " " .. steps)
-- expect: 17280 591600
-- small: 1
