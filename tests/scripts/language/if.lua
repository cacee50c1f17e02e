-- if, elseif, else: the first true condition decides, the rest is not evaluated. Only nil and false are false.
function truth(v)
  if v then return "true" end
  return "false"
end
print(truth(nil), truth(false), truth(true), truth(0), truth(0.0))  -- expect: false	false	true	true	true
print(truth(""), truth("false"), truth({}), truth(print), truth())  -- expect: true	true	true	true	false

function check(label, value)
  print(label)
  return value
end
if check("first", false) then
  print("no")
elseif check("second", nil) then
  print("no")
elseif check("third", 0) then
  print("taken")
elseif check("fourth", true) then
  print("no")
else
  print("no")
end
-- expect: first
-- expect: second
-- expect: third
-- expect: taken
if check("only", false) then print("no") end  -- expect: only

-- Empty branches, nesting, one line.
if false then elseif true then else end
if 1 == 1 then if 2 == 2 then if nil then else print("deep") end end else print("no") end  -- expect: deep
if true then; print("semicolons"); end;  -- expect: semicolons

-- A call as condition gives its first value; a call without values is nil.
function two() return false, true end
function none() end
if two() then print("no") else print("first value") end  -- expect: first value
if none() then print("no") else print("no value") end  -- expect: no value

if false then
  print("no")
elseif nil
    + 1 then  -- expect error: operator '+' expects numbers
  print("no")
end
