-- while, and break, which ends the innermost loop only.
i = 0
while i < 2 and "on" do i = i + 1 end
while nil do print("never") end
for j = 1, 3 do
  while true do
    if j == 2 then break end
    i = i + 10
    if i > 20 then break end
  end
end
print(i)  -- expect: 32
-- First statement, followed by more, out of nested branches.
while true do break; print("never") end
while i do
  if true then break print("never") else print("no") end
end

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
