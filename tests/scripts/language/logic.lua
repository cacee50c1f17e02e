-- and, or, not: only nil and false are false, the operands themselves are the results.
print(not nil, not false, not true, not 0, not "", not {})  -- expect: true	true	false	false	false	false
print(not 0.0, not print, not not nil, not not 1)  -- expect: false	false	false	true

print(1 and 2, nil and 2, false and 2, 0 and "zero")  -- expect: 2	nil	false	zero
print(1 or 2, nil or 2, false or nil, nil or false, #("" or "x"))  -- expect: 1	2	nil	false	0
print(0 or 1, nil and nil, false or false)  -- expect: 0	nil	false

-- The right operand runs only when it decides.
function note(value)
  print("evaluated", value)
  return value
end
print(nil and note(1), 1 or note(2))  -- expect: nil	1
print(1 and note(3))
-- expect: evaluated	3
-- expect: 3
print(false or note(nil))
-- expect: evaluated	nil
-- expect: nil
print(note(false) and note(1) or note(2))
-- expect: evaluated	false
-- expect: evaluated	2
-- expect: 2
print(nil and error("not reached"), 1 or error("not reached"))  -- expect: nil	1

-- and binds tighter than or; both are left associative and lower than comparisons.
print(1 or nil and nil, nil and 1 or 2, false or 1 and 2)  -- expect: 1	2	2
print(nil or false and 1 or 3, 1 and 2 and 3, nil or false or 4)  -- expect: 3	3	4
print(1 < 2 and 2 < 3, 1 > 2 or 2 > 3, not nil and 1)  -- expect: true	false	1
print(not (1 and nil), not 1 and nil, not nil == true)  -- expect: true	false	true
print((1 or 2) and 3, 1 or (2 and 3))  -- expect: 3	1

-- A call as operand contributes its first value only.
function two() return 1, 2 end
function none() end
print(two() and 5, nil or two())  -- expect: 5	1
print(none() or "default", none() and 1)  -- expect: default	nil

-- Conditions.
if 0 then print("0 is true") end  -- expect: 0 is true
if "" then print("the empty string is true") end  -- expect: the empty string is true
if not (nil or false) then print("neither") end  -- expect: neither
