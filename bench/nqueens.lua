-- All placements of nine queens, twenty times over: recursion, short arrays of flags, branches.
local n = tonumber(arg[1] or 20)

local size = 9

local function clearFlags(count)
  local flags = {}
  for i = 1, count do
    flags[i] = false
  end
  return flags
end

local function place(row, columns, rising, falling)
  if row > size then
    return 1
  end
  local found = 0
  for column = 1, size do
    local up = row + column
    local down = row - column + size
    if not (columns[column] or rising[up] or falling[down]) then
      columns[column] = true
      rising[up] = true
      falling[down] = true
      found = found + place(row + 1, columns, rising, falling)
      columns[column] = false
      rising[up] = false
      falling[down] = false
    end
  end
  return found
end

local total = 0
for round = 1, n do
  total = total + place(1, clearFlags(size), clearFlags(2 * size), clearFlags(2 * size))
end
print(total)
-- expect: 7040
-- small: 1
