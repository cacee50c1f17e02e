-- Recursion in which every argument of a call is a call.
local n = tonumber(arg[1] or 40)

local function tak(x, y, z)
  if y >= x then
    return z
  end
  return tak(tak(x - 1, y, z), tak(y - 1, z, x), tak(z - 1, x, y))
end

local total = 0
for round = 1, n do
  total = total + tak(18, 12, 6)
end
print(total)
-- expect: 280
-- small: 1
