-- Sorting lists that already have an order: rising, falling, rising then falling, all equal, nearly rising.
local n = tonumber(arg[1] or 150000)

local function listOf(count, valueAt)
  local list = {}
  for i = 1, count do
    list[i] = valueAt(i)
  end
  return list
end

local shapes = {
  function(i) return i end,
  function(i) return n - i end,
  function(i) if 2 * i < n then return i end return n - i end,
  function(i) return 7 end,
  function(i) if i % 1000 == 0 then return i - 500 end return i end,
}

local checksum = 0
for number, valueAt in ipairs(shapes) do
  local list = listOf(n, valueAt)
  table.sort(list)
  for i = 1, n, 100 do
    checksum = (checksum * 31 + list[i]) % 1000003
  end
end
print(checksum)
-- expect: 905750
-- small: 500
