-- Generic for: advances an iterator value; iterator functions do not exist.
for k, v in pairs({x = 1}) do print(k, v) end  -- expect: x	1
for i, v, extra in ipairs({"a"}) do print(i, v, extra) end  -- expect: 1	a	nil
for k in pairs({}) do print("never") end
for i in ipairs({"a"}) do print(i) end  -- expect: 1

-- The list is evaluated once; only its first value counts. It still sees the outer names.
list = {"a", "b"}
function note(label, value)
  print(label)
  return value
end
for i, list in note("iterator", ipairs(list)), note("state", nil), note("control") do print(i, list) end
-- expect: iterator
-- expect: state
-- expect: control
-- expect: 1	a
-- expect: 2	b

-- The variables are new in each iteration; assigning them changes nothing else.
made = {}
for i, v in ipairs(list) do
  made[i] = function()
    v = v .. i
    return v
  end
  i = i + 10
end
print(made[1](), made[2](), made[1](), list[1])  -- expect: a11	b12	a1111	a

-- An iterator keeps its position: a second loop goes on where the first one stopped.
it = ipairs({"one", "two", "three", "four"})
for i, v in it do
  print(v)
  if i == 2 then break end
end
-- expect: one
-- expect: two
for i, v in it do print(i, v) end
-- expect: 3	three
-- expect: 4	four
for i, v in it do print("exhausted") end
walk = pairs({a = 1, b = 2})
for k, v in walk do
  for k2, v2 in walk do print(k, k2) end
end
-- expect: a	b

print(pcall(function() for x in function() end do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in nil do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in nil, pairs({}) do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in io.stdout do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in (function() end)() do end end))  -- expect: false	generic for loop expects an iterator
for k,  -- expect error: generic for loop expects an iterator
    v in
    {1, 2} do
  print("unreachable")
end
