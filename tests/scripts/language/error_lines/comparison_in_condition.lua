-- The condition of a loop fails at its operator, in the iteration that makes it fail.
i = 0
while i
    < 3 do  -- expect error: ordered comparisons require matching numbers or strings
  i = i + 1
  print(i)
  if i == 2 then i = "2" end
end
-- expect: 1
-- expect: 2
