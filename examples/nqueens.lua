-- Places queens on a chessboard so that no two attack each other, counts the ways to do it and
-- shows the first one.
--
--   tarvellua examples/nqueens.lua [SIZE]
--
-- expect: 4 ways to place 6 queens, such as
-- expect: . Q . . . .
-- expect: . . . Q . .
-- expect: . . . . . Q
-- expect: Q . . . . .
-- expect: . . Q . . .
-- expect: . . . . Q .

-- Arguments are strings; tonumber gives nil for what is no number. Each further queen makes the
-- search several times as long.
local size = tonumber(arg[1] or "6")
if not (size and size >= 1 and size <= 16 and size % 1 == 0) then
  io.stderr:write("usage: tarvellua examples/nqueens.lua [SIZE, at most 16]\n")
  os.exit(2)
end

-- Which columns and diagonals a queen holds. On a rising diagonal row + column is the same for
-- every square, on a falling one row - column.
local columns, rising, falling = {}, {}, {}
local placed = {}  -- the column of the queen in each row
local ways = 0
local first  -- a copy of `placed` at the first solution; nil until then

local function place(row)
  if row > size then
    ways = ways + 1
    if not first then
      first = {}
      for i, column in ipairs(placed) do
        first[i] = column
      end
    end
    return
  end
  for column = 1, size do
    local up, down = row + column, row - column
    if not columns[column] and not rising[up] and not falling[down] then
      columns[column], rising[up], falling[down] = true, true, true
      placed[row] = column
      place(row + 1)
      columns[column], rising[up], falling[down] = false, false, false
    end
  end
end

place(1)
if first then
  print(ways .. " ways to place " .. size .. " queens, such as")
  for row, queen in ipairs(first) do
    local squares = {}
    for column = 1, size do
      squares[column] = "."
    end
    squares[queen] = "Q"
    print(table.concat(squares, " "))
  end
else
  print("no way to place " .. size .. " queens")
end
