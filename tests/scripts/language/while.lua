-- while: the condition runs before each iteration.
i = 0
while i < 3 do
  i = i + 1
  print(i)
end
-- expect: 1
-- expect: 2
-- expect: 3
while false do print("never") end
while nil do print("never") end
while i > 0 do i = i - 1 end
print(i)  -- expect: 0

function check(limit)
  print("check", i)
  return i < limit
end
while check(2) do i = i + 1 end
-- expect: check	0
-- expect: check	1
-- expect: check	2

-- Any true value continues.
list = {"a", "b"}
n = 1
while list[n] do
  print(list[n])
  n = n + 1
end
-- expect: a
-- expect: b
chain = {value = 1, next = {value = 2, next = {value = 3}}}
sum = 0
node = chain
while node do
  sum = sum + node.value
  node = node.next
end
print(sum, node)  -- expect: 6	nil

-- Nested loops, break of the inner one, locals in the bodies.
local rows = 0
while true do
  rows = rows + 1
  local columns = 0
  while true do
    columns = columns + 1
    if columns == rows then break end
  end
  print(rows, columns)
  if rows == 3 then break end
end
-- expect: 1	1
-- expect: 2	2
-- expect: 3	3

-- A body that makes functions has a new environment in each iteration.
made = {}
i = 0
while i < 3 do
  i = i + 1
  local captured = i * 10
  made[i] = function()
    captured = captured + 1
    return captured
  end
end
print(made[1](), made[1](), made[2](), made[3](), made[1]())  -- expect: 11	12	21	31	13

-- A long loop ends exactly.
count = 0
total = 0
while count < 100000 do
  count = count + 1
  total = total + count
end
print(count, total)  -- expect: 100000	5000050000

-- return from inside.
function firstPower(limit)
  local p = 1
  while true do
    if p > limit then return p, "found" end
    p = p * 2
  end
end
print(firstPower(1000))  -- expect: 1024	found
print(pcall(function() while {} < 1 do end end))  -- expect: false	ordered comparisons require matching numbers or strings

i = 3
while i ~= "done" do
  if i == 0 then
    i = {}
  end
  i = i - 1  -- expect error: operator '-' expects numbers
end
