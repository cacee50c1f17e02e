-- Numeric for: integer loops, float loops, bounds.
function values(start, limit, step)
  local text = ""
  for v = start, limit, step do text = text .. v .. " " end
  return "[" .. text .. "]"
end
print(values(1, 10, 3), values(10, 1, -4), values(5, 5, 1))  -- expect: [1 4 7 10 ]	[10 6 2 ]	[5 ]
print(values(1, 0, 1), values(0, 1, -1), values(-2, 2, 2))  -- expect: []	[]	[-2 0 2 ]

-- Floats: any float among the three makes a float loop; values are added up step by step.
print(values(1, 2, 0.5), values(2, 1, -0.25))  -- expect: [1 1.5 2 ]	[2 1.75 1.5 1.25 1 ]
print(values(1, 3.5, 1), values(1.5, 4, 1), values(0.5, 0.4, 1))  -- expect: [1 2 3 ]	[1.5 2.5 3.5 ]	[]
for x = 0, 1, 0.1 do last = x end
print(last == 1.0, last < 1)  -- expect: false	true
for x = 1, 1.5 do print(x == 1.0000000000000002) end  -- expect: false
for x = 1, 1 do print(x == 1.0000000000000002) end  -- expect: true
for x = 1, 1, 1.0 do print(x == 1.0000000000000002) end  -- expect: false
-- A step within the machine epsilon is not zero.
print(values(0, 0.0000000000000002, 0.0000000000000001))  -- expect: [0 1e-16 2e-16 ]

-- At the ends of the integer range the loop ends instead of wrapping.
max = 9223372036854775807
min = -9223372036854775808
print(values(max - 1, max, 1))  -- expect: [9223372036854775806 9223372036854775807 ]
print(values(min + 1, min, -1))  -- expect: [-9223372036854775807 -9223372036854775808 ]
print(values(1, max, 4611686018427387904))  -- expect: [1 4611686018427387905 ]
print(values(min, max, max))  -- expect: [-9223372036854775808 -1 9223372036854775806 ]
print(values(max, min, min), values(max, min, 1))  -- expect: [9223372036854775807 -1 ]	[]
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
print(values(1, -inf, 1), values(5, 6, inf), values(5, 6, inf / inf))  -- expect: []	[5 ]	[]
for i = 1, inf do
  if i == 4 then break end
  last = i
end
print(last)  -- expect: 3

-- Start, limit and step are evaluated once, in this order, before any check; the bounds do not see the variable.
function note(label, value)
  print(label, i)
  return value
end
i = "outer"
for i = note("start", 1), note("limit", 2), note("step", 1) do print(i) end
-- expect: start	outer
-- expect: limit	outer
-- expect: step	outer
-- expect: 1
-- expect: 2
print(pcall(function() for i = note("start", "1"), note("limit", 2), note("step", 0) do end end), i)
-- expect: start	outer
-- expect: limit	outer
-- expect: step	outer
-- expect: false	outer
function bounds() return 1, 2, 3 end
for i = bounds(), bounds() do print("once", i) end  -- expect: once	1

-- Assigning the variable does not disturb the iteration, neither in the body nor in a function.
for i = 1, 2 do
  i = "text"
  print(i)
  i = nil
end
-- expect: text
-- expect: text
for i = 1, 2 do
  (function() i = i * -1 end)()
  print(i)
end
-- expect: -1
-- expect: -2
print(i)  -- expect: outer

print(pcall(function() for i = "1", 2 do end end))  -- expect: false	numeric for loop expects numeric bounds
print(pcall(function() for i = 1, "2" do end end))  -- expect: false	numeric for loop expects numeric bounds
print(pcall(function() for i = 1, 2, "1" do end end))  -- expect: false	numeric for loop expects numeric bounds
print(pcall(function() for i = 1, 3, 0 do end end))  -- expect: false	numeric for step cannot be zero
print(pcall(function() for i = 1.5, 2, 0 / -1 do end end))  -- expect: false	numeric for step cannot be zero
for i = 1, 3,  -- expect error: numeric for step cannot be zero
    0 do
  print("unreachable")
end
