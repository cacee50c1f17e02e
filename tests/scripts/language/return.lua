-- return: any number of values, from any depth.
function none() return end
function three() return 1, 2, 3 end
print(none(), "x")  -- expect: nil	x
print("x", none())  -- expect: x
a, b, c = none()
print(a, b, c)  -- expect: nil	nil	nil

-- A call in last place passes all its values on, elsewhere only the first.
function pass() return three() end
function middle() return three(), "m" end
function grouped() return (three()) end
print(pass())  -- expect: 1	2	3
print(middle())  -- expect: 1	m
print(grouped())  -- expect: 1	2	3
function nothing() return none() end
print("n", nothing())  -- expect: n

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

-- Statements after a return are accepted and never run; without a separator the next line belongs to the return.
function early()
  if true then return "early" print("never") end
end
print(early())  -- expect: early
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
