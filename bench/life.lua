-- Generations of a board of cells: sums of the neighbours in rows of rows.
local n = tonumber(arg[1] or 120)
local size = 64

local function newBoard()
  local board = {}
  for y = 1, size do
    local row = {}
    for x = 1, size do
      row[x] = 0
    end
    board[y] = row
  end
  return board
end

local function step(board, following)
  for y = 2, size - 1 do
    local above, row, below, target = board[y - 1], board[y], board[y + 1], following[y]
    for x = 2, size - 1 do
      local around = above[x - 1] + above[x] + above[x + 1] + row[x - 1] + row[x + 1] +
          below[x - 1] + below[x] + below[x + 1]
      if around == 3 or (around == 2 and row[x] == 1) then
        target[x] = 1
      else
        target[x] = 0
      end
    end
  end
end

local board, following, seed = newBoard(), newBoard(), 42
for y = 2, size - 1 do
  for x = 2, size - 1 do
    seed = seed * 16807 % 2147483647
    board[y][x] = math.floor(seed / 1000) % 2
  end
end
for generation = 1, n do
  step(board, following)
  board, following = following, board
end
local checksum = 0
for y = 1, size do
  for x = 1, size do
    checksum = (checksum * 2 + board[y][x]) % 1000003
  end
end
print(checksum)
-- expect: 975494
-- small: 2
