-- break ends the innermost loop only.
for i = 1, 10 do
  if i == 3 then break end
  print(i)
end
-- expect: 1
-- expect: 2
for i, v in ipairs({"a", "b", "c"}) do
  if v == "b" then break end
  print(v)
end
-- expect: a
n = 0
while true do
  n = n + 1
  if n == 4 then break end
end
print(n)  -- expect: 4

for i = 1, 3 do
  for j = 1, 3 do
    if j == i then break end
    print(i, j)
  end
end
-- expect: 2	1
-- expect: 3	1
-- expect: 3	2
for i = 1, 2 do
  while true do
    for k in pairs({1, 2, 3}) do
      if k == 2 then break end
      print("inner", i, k)
    end
    break
  end
  print("outer", i)
end
-- expect: inner	1	1
-- expect: outer	1
-- expect: inner	2	1
-- expect: outer	2

-- First statement, only statement, and followed by more.
for i = 1, 5 do break end
while true do break; print("never") end
for i = 1, 5 do
  if i > 1 then break print("never") end
  print("once")
end
-- expect: once

-- Out of nested branches.
for i = 1, 5 do
  if i > 1 then
    if i > 2 then
      if true then break else print("no") end
      print("never")
    end
  end
  print("pass", i)
end
-- expect: pass	1
-- expect: pass	2

-- In a loop inside a function that is called in a loop.
function upTo(limit)
  local last
  for i = 1, 100 do
    last = i
    if i == limit then break end
  end
  return last
end
for i = 2, 3 do print(upTo(i)) end
-- expect: 2
-- expect: 3

-- In bodies that make functions.
made = {}
for i = 1, 5 do
  local square = i * i
  made[i] = function() return square end
  if i == 3 then break end
end
print(#made, made[3](), made[4])  -- expect: 3	9	nil

-- A function made in a loop may hold a loop with a break of its own.
for i = 1, 2 do
  print((function()
    for j = 1, 10 do
      if j > i then break end
      last = j
    end
    return last
  end)())
end
-- expect: 1
-- expect: 2

-- After break the loop can run again from the start.
function count(limit)
  local n = 0
  for i = 1, 10 do
    if i > limit then break end
    n = n + 1
  end
  return n
end
print(count(3), count(20), count(0))  -- expect: 3	10	0
