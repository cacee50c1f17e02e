-- Cells of a grid in one table, under keys joined from their coordinates.
local n = tonumber(arg[1] or 150)

local cells, seed = {}, 42
for i = 1, n * n do
  seed = seed * 16807 % 2147483647
  cells[seed % n .. "," .. math.floor(seed / n) % n] = i % 9 + 1
end

local sum, missing = 0, 0
for round = 1, 10 do
  for y = 0, n - 1 do
    for x = 0, n - 1 do
      local cell = cells[x .. "," .. y]
      if cell then
        sum = sum + cell
      else
        missing = missing + 1
      end
    end
  end
end
print(sum .. " " .. missing)
-- expect: 715580 82280
-- small: 8
