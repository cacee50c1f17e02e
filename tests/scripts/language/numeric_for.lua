-- Numeric for: integer loops, float loops, bounds.
function values(start, limit, step)
  local text = ""
  for v = start, limit, step do text = text .. v .. " " end
  return "[" .. text .. "]"
end
print(values(1, 10, 3), values(10, 1, -4), values(5, 5, 1), values(0, 1, -1))
-- expect: [1 4 7 10 ]	[10 6 2 ]	[5 ]	[]

-- Floats: any float among the three makes a float loop; values are added up step by step.
print(values(1, 2, 0.5), values(2, 1, -0.25))  -- expect: [1 1.5 2 ]	[2 1.75 1.5 1.25 1 ]
for x = 0, 1, 0.1 do last = x end
print(last == 1.0, last < 1)  -- expect: false	true
for x = 1, 3.5 do
  if x > 1 then break end
  print(x == 1.0000000000000002)  -- expect: false
end
for x = 1, 1, 1.0 do print(x == 1.0000000000000002) end  -- expect: false
-- A step within the machine epsilon is not zero.
print(values(0, 0.0000000000000002, 0.0000000000000001))  -- expect: [0 1e-16 2e-16 ]
print(pcall(function() for i = 1, "2" do end end))  -- expect: false	numeric for loop expects numeric bounds
print(pcall(function() for i = 1, 2, "1" do end end))  -- expect: false	numeric for loop expects numeric bounds
print(pcall(function() for i = 1.5, 2, 0 / -1 do end end))  -- expect: false	numeric for step cannot be zero
print(pcall(function() for i = 1, 3, 0 do end end))  -- expect: false	numeric for step cannot be zero

-- At the ends of the integer range the loop ends instead of wrapping. A NaN ends it before the first iteration.
max, min = 9223372036854775807, -9223372036854775808
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
nan = inf / inf
print(values(1, max, 4611686018427387904))  -- expect: [1 4611686018427387905 ]
print(values(min, max, max))  -- expect: [-9223372036854775808 -1 9223372036854775806 ]
print(values(max, min, min), values(max, min, 1))  -- expect: [9223372036854775807 -1 ]	[]
print(values(1, -inf, 1), values(5, 6, inf), values(5, 6, nan), values(6, 5, nan), values(1, nan, 1))
-- expect: []	[5 ]	[]	[]	[]

-- The bounds do not see the variable; assigning it does not disturb the iteration, in the body nor in a function.
i = 2
function bounds() return 1, 2, 3 end
seen = ""
for i = bounds(), i do
  (function() i = i * -1 end)()
  seen = seen .. i
end
print(seen, i)  -- expect: -1-2	2
