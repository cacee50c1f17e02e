-- break: as first statement, out of nested branches; in bodies that make functions, and in functions made in loops.
while true do break; print("never") end
while 0 do
  if true then break print("never") else print("no") end
end
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
