-- The longest chain of "halve, or triple and add one" below a limit: division and math.floor.
local n = tonumber(arg[1] or 30000)

local longest, best = 0, 0
for start = 1, n do
  local x, steps = start, 0
  while x ~= 1 do
    if x % 2 == 0 then
      x = math.floor(x / 2)
    else
      x = 3 * x + 1
    end
    steps = steps + 1
  end
  if steps > longest then
    longest = steps
    best = start
  end
end
print(best .. " " .. longest)
-- expect: 26623 307
-- small: 60
