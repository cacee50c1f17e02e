-- if, while, and, or, not: only nil and false are false, and the operands themselves are the results.
print(not nil, not false, not true, not 0, not "", not {}, not (1 and nil))  -- expect: true	true	false	false	false	false	true
print(1 and 2, nil and 2, false and 2, 1 or 2, nil or 2, false or nil)  -- expect: 2	nil	false	1	2	nil

-- A call as operand or condition contributes its first value only; a call without values is nil.
function two() return false, true end
function none() end
print(two() or 5, none() or "default", none() and 1, 1 and two())  -- expect: 5	default	nil	false
if two() then print("no") else print("first value") end  -- expect: first value
if none() then print("no") elseif nil then else print("no value") end  -- expect: no value

-- Longer chains than the evaluator nests.
function word(n)
  if n == 0 then return "0" elseif n == 1 then return "1" elseif n == 2 then return "2" elseif n == 3 then return "3"
  elseif n == 4 then return "4" elseif n == 5 then return "5" elseif n == 6 then return "6" elseif n == 7 then return "7"
  elseif n == 8 then n = "eight" else return "many" end
  return n
end
print(word(0), word(4), word(7), word(8), word(9))  -- expect: 0	4	7	eight	many
-- Locals that only ever hold numbers and booleans.
function mixed(n)
  local a, b = n > 1 and 5, n > 2 and 6 or 7
  a = n > 3 and b or a
  return a, b
end
print((mixed(1)), (mixed(2)), mixed(4))  -- expect: false	5	6	6
-- Locals that come to hold a table only through `and`.
function owner(n) local a = n and {} return type(a) end
function copies()
  local source, seen = 1, {}
  for i = 1, 3 do
    local copy = i and source
    seen[i] = type(copy)
    source = {}
  end
  return seen
end
print(owner(1), copies())  -- expect: table	{number, table, table}
