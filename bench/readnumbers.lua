-- A file of numbers read one by one, several times over. Run in the project's folder.
local n = tonumber(arg[1] or 50)

local count, sum = 0, 0
for round = 1, n do
  local file = io.open("bench/data/readings.txt")
  local number = file:read("n")
  while number do
    count = count + 1
    sum = sum + number
    number = file:read("n")
  end
  file:close()
end
print(count .. " " .. math.floor(sum * 100 + 0.5))
-- expect: 300000 4895848317500
-- small: 1
