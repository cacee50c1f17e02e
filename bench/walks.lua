-- Counting ways through a grid with few turns: recursion with five arguments.
local n = tonumber(arg[1] or 12)

local function walk(x, y, goal, heading, turns)
  if x > goal or y > goal or turns < 0 then
    return 0
  elseif x == goal and y == goal then
    return 1
  elseif heading == 1 then
    return walk(x + 1, y, goal, 1, turns) + walk(x, y + 1, goal, 2, turns - 1)
  end
  return walk(x + 1, y, goal, 1, turns - 1) + walk(x, y + 1, goal, 2, turns)
end

print(walk(0, 0, n, 1, 7) .. " " .. walk(0, 0, n, 2, 6))
-- expect: 52901 16601
-- small: 4
