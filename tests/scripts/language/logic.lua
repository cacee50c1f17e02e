-- and, or, not: only nil and false are false, the operands themselves are the results.
print(not nil, not false, not true, not 0, not "", not {})  -- expect: true	true	false	false	false	false

print(1 and 2, nil and 2, false and 2, 0 and "zero")  -- expect: 2	nil	false	zero
print(1 or 2, nil or 2, false or nil, nil or false, #("" or "x"))  -- expect: 1	2	nil	false	0

-- The right operand runs only when it decides.
function note(value)
  print("evaluated", value)
  return value
end
print(nil and note(1), 1 or note(2))  -- expect: nil	1
print(false or note(nil))
-- expect: evaluated	nil
-- expect: nil
print(note(false) and note(1) or note(2))
-- expect: evaluated	false
-- expect: evaluated	2
-- expect: 2

-- and binds tighter than or; both are left associative and lower than comparisons.
print(1 or nil and nil, nil and 1 or 2, false or 1 and 2)  -- expect: 1	2	2
print(not (1 and nil), not 1 and nil, not nil == true)  -- expect: true	false	true

-- A call as operand contributes its first value only.
function two() return 1, 2 end
function none() end
print(two() and 5, nil or two())  -- expect: 5	1
print(none() or "default", none() and 1)  -- expect: default	nil
