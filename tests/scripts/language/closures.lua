-- Functions share the variables of the scopes they were made in. Everything here keeps its functions in globals, so
-- that all of it is released in the end.
function counter(n)
  return function(step)
    n = n + (step or 1)
    return n
  end
end
c1, c2 = counter(0), counter(100)
print(c1(), c1(), c2(), c1(5), c2(-1))  -- expect: 1	2	101	7	100
-- Changes made by the scope after the function was made are seen, and the other way round.
function both()
  local x = 1
  get, put = function() return x end, function(v) x = v end
  x = 2
  local before = get()
  put(3)
  return before, x, get()
end
print(both())  -- expect: 2	3	3
-- Each iteration has its own variables.
readers = {}
for k, v in pairs({a = 1, b = 2}) do readers[k] = function() return k .. v end end
print(readers.a(), readers.b())  -- expect: a1	b2
-- Several levels of functions and blocks between the variable and its use.
function levels(a)
  local b = "b"
  for i = 1, 1 do
    while true do
      local c = "c"
      if c then
        local unshared = c
        deep = function(d)
          return (function(e)
            b = b .. "+"
            return a .. b .. c .. d .. e .. i
          end)("e")
        end
      end
      break
    end
  end
  return b
end
print(levels("a"), deep("d"), deep("d"))  -- expect: b	ab+cde1	ab++cde1
