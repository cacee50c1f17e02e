-- while: the condition runs before each iteration, and any true value continues.
i = 0
function check(limit)
  print("check", i)
  return i < limit and "on"
end
while check(2) do i = i + 1 end
-- expect: check	0
-- expect: check	1
-- expect: check	2
while nil do print("never") end
while true do
  i = i + 1
  if i == 100000 then break end
end
print(i)  -- expect: 100000

