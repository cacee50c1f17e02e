-- Recursion in which a call is the last argument of a call.
local n = tonumber(arg[1] or 250)

local function ackermann(m, k)
  if m == 0 then
    return k + 1
  elseif k == 0 then
    return ackermann(m - 1, 1)
  end
  return ackermann(m - 1, ackermann(m, k - 1))
end

local total = 0
for round = 1, n do
  total = total + ackermann(2, 60)
end
print(total)
-- expect: 30750
-- small: 1
