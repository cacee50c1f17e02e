-- skip sanitized: the frames of a sanitized build are too large for so many calls
-- 200,000 nested script calls are within the limit.
function depth(n)
  if n == 0 then return 0 end
  return 1 + depth(n - 1)
end
print(depth(199999))  -- expect: 199999

-- Long chains of tables and of functions are released without running out of stack.
list = nil
for i = 1, 300000 do list = {next = list, value = i} end
print(list.value, list.next.next.value)  -- expect: 300000	299998
list = nil
function wrap(inner) return function() return inner end end
for i = 1, 100000 do list = wrap(list) end
print(type(list()), type(list()()))  -- expect: function	function
list = nil
nested = {}
for i = 1, 100000 do nested = {nested} end
nested = "released"
print(nested)  -- expect: released
