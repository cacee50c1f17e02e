-- break ends the innermost loop only.
for i, v in ipairs({"a", "b", "c"}) do
  if v == "b" then break end
  print(v)
end
-- expect: a
for i = 1, 3 do
  for j = 1, 3 do
    if j == i then break end
    print(i, j)
  end
end
-- expect: 2	1
-- expect: 3	1
-- expect: 3	2

-- First statement, followed by more, out of nested branches.
while true do break; print("never") end
for i = 1, 5 do
  if i > 1 then
    if true then break print("never") else print("no") end
    print("never")
  end
  print("pass", i)
end
-- expect: pass	1

-- In bodies that make functions, and in functions made in loops.
made = {}
for i = 1, 5 do
  local square = i * i
  made[i] = function()
    for j = 1, 10 do
      if j > 2 then break end
      square = square + j
    end
    return square
  end
  if i == 3 then break end
end
print(#made, made[3](), made[3](), made[1](), made[4])  -- expect: 3	12	15	4	nil
