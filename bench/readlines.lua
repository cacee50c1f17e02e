-- A file read line by line, several times over. Run in the project's folder.
local n = tonumber(arg[1] or 300)

local lines, longest, bytes = 0, 0, 0
for round = 1, n do
  local file = io.open("bench/data/readings.txt")
  local line = file:read("l")
  while line do
    lines = lines + 1
    bytes = bytes + #line
    if #line > longest then
      longest = #line
    end
    line = file:read("l")
  end
  file:close()
end
print(lines .. " " .. bytes .. " " .. longest)
-- expect: 600000 9256500 16
-- small: 1
