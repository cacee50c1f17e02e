-- return: any number of values, from any depth.
function none() return end
function one() return 1 end
function three() return 1, 2, 3 end
function fall() end
print(one(), three())  -- expect: 1	1	2	3
print(none(), "x")  -- expect: nil	x
print("x", none())  -- expect: x
print("x", fall())  -- expect: x
a, b, c = none()
print(a, b, c)  -- expect: nil	nil	nil
print(pcall(none))  -- expect: true
print(pcall(three))  -- expect: true	1	2	3

-- A call in last place passes all its values on, elsewhere only the first.
function pass() return three() end
function prefixed() return "p", three() end
function middle() return three(), "m" end
function grouped() return (three()) end
function twice() return three(), three() end
print(pass())  -- expect: 1	2	3
print(prefixed())  -- expect: p	1	2	3
print(middle())  -- expect: 1	m
print(grouped())  -- expect: 1	2	3
print(twice())  -- expect: 1	1	2	3
function nothing() return none() end
function nilAndNothing() return none(), none() end
print("n", nothing())  -- expect: n
print("n", nilAndNothing())  -- expect: n	nil
function expression() return three() + 0, three() or 0, #three() end
print(pcall(expression))  -- expect: false	length operator expects a string or table
print(pcall(function() return three() + 0, three() .. "" end))  -- expect: true	1	1

-- From inside blocks and loops.
function nested(n)
  if n == 1 then return "if" elseif n == 2 then return "elseif" else
    for i = 1, 10 do
      while true do
        for k, v in pairs({10, 20, 30}) do
          if i == 2 and k == n then return i, k, v end
        end
        break
      end
    end
    return
  end
end
print(nested(1), nested(2), nested(3))  -- expect: if	elseif	2	3	30
print(nested(4))
-- expect:
function fromWhile() while true do return "while" end end
function fromFor() for i = 1, 3 do return i end end
function fromGeneric() for k, v in pairs({x = "y"}) do return k, v end end
print(fromWhile(), fromFor(), fromGeneric())  -- expect: while	1	x	y

-- Locals and captured variables survive their scope as results.
function locals()
  local a, b = {1}, "text"
  for i = 1, 1 do
    local c = {2}
    return a, b, c
  end
end
a, b, c = locals()
print(a[1], b, c[1])  -- expect: 1	text	2
function captured()
  local n = 0
  return function() n = n + 1 return n end, function() return n end
end
step, current = captured()
step()
print(step(), current())  -- expect: 2	2

-- Statements after a return are accepted and never run.
function early()
  return "early"; print("never")
end
print(early())  -- expect: early
function afterwards() if true then return 1 print("never") end end
print(afterwards())  -- expect: 1

-- Without a separator the next line belongs to the return.
function swallowed()
  return
  print("called by the return")
end
swallowed()  -- expect: called by the return
function separated()
  return;
  print("never")
end
separated()
function onlyNil() return nil end
print(onlyNil())  -- expect: nil

-- A function ends; its caller's loop goes on.
for i = 1, 2 do
  fromFor()
  print("loop", i)
end
-- expect: loop	1
-- expect: loop	2
