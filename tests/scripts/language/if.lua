-- if, elseif, else: the first true condition decides, the rest is not evaluated.
function grade(n)
  if n >= 90 then
    return "A"
  elseif n >= 80 then
    return "B"
  elseif n >= 70 then
    return "C"
  else
    return "F"
  end
end
print(grade(95), grade(90), grade(89), grade(75), grade(3))  -- expect: A	A	B	C	F

-- Only nil and false are false.
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
if true then end
if false then elseif true then else end
if false then else print("else") end  -- expect: else
if true then if false then print("no") else print("inner else") end end  -- expect: inner else
if 1 == 1 then if 2 == 2 then if nil then else print("deep") end end else print("no") end  -- expect: deep
if true then; print("semicolons"); end;  -- expect: semicolons

-- A call as condition gives its first value; a call without values is nil.
function two() return false, true end
function none() end
if two() then print("no") else print("first value") end  -- expect: first value
if none() then print("no") else print("no value") end  -- expect: no value

-- Locals of a branch with as many or more names than its neighbours.
for i = 1, 4 do
  if i == 1 then
    local a = "one"
    result = a
  elseif i == 2 then
    local a, b, c = 1, 2
    result = a .. b .. (c or "nil")
  elseif i == 3 then
    local b
    result = b
  else
    local a, b
    a, b = b, a
    result = a == b
  end
  print(result)
end
-- expect: one
-- expect: 12nil
-- expect: nil
-- expect: true

-- return and break leave through any number of branches.
function search(list, wanted)
  for i, v in ipairs(list) do
    if v ~= nil then
      if v == wanted then
        if true then return i end
      elseif v == "stop" then
        break
      end
    end
  end
  return "not found"
end
print(search({"a", "b", "c"}, "b"), search({"a", "stop", "c"}, "c"), search({}, 1))  -- expect: 2	not found	not found

if false then
  print("no")
elseif nil
    + 1 then  -- expect error: operator '+' expects numbers
  print("no")
end
