-- Generic for: advances an iterator value; iterator functions do not exist.
for k, v in pairs({x = 1}) do print(k, v) end  -- expect: x	1
for i, v in ipairs({"a", "b"}) do print(i, v) end
-- expect: 1	a
-- expect: 2	b
for k in pairs({only = "key"}) do print(k) end  -- expect: only
for i, v, extra in ipairs({"a"}) do print(i, v, extra) end  -- expect: 1	a	nil
for k in pairs({}) do print("never") end
for i in ipairs({}) do print("never") end

-- The list is evaluated once; only its first value counts.
function note(label, value)
  print(label)
  return value
end
for i, v in note("iterator", ipairs({"a", "b"})), note("state", nil), note("control") do print(i, v) end
-- expect: iterator
-- expect: state
-- expect: control
-- expect: 1	a
-- expect: 2	b
function iterate(t) return pairs(t), "dropped" end
for k, v in iterate({y = 2}) do print(k, v) end  -- expect: y	2

-- The variables are new in each iteration; assigning them changes nothing else.
t = {"a", "b"}
for i, v in ipairs(t) do
  print(i, v)
  i, v = i + 10, nil
end
-- expect: 1	a
-- expect: 2	b
print(t[1], t[2])  -- expect: a	b
made = {}
for i, v in ipairs({"x", "y", "z"}) do
  made[i] = function()
    v = v .. i
    return v
  end
end
print(made[1](), made[2](), made[1](), made[3]())  -- expect: x1	y2	x11	z3
for i, v in ipairs({"p", "q"}) do
  local seen
  print(v, seen)
  seen = v
end
-- expect: p	nil
-- expect: q	nil

-- The variables shadow outer names only inside; the list still sees the outer ones.
list = {"outer"}
for i, list in ipairs(list) do print(i, list) end  -- expect: 1	outer
print(list[1])  -- expect: outer

-- An iterator keeps its position: a second loop goes on where the first one stopped.
it = ipairs({"one", "two", "three", "four"})
for i, v in it do
  print(v)
  if i == 2 then break end
end
-- expect: one
-- expect: two
same = it
for i, v in same do print(i, v) end
-- expect: 3	three
-- expect: 4	four
for i, v in it do print("exhausted") end
for i, v in same do print("exhausted") end
walk = pairs({a = 1, b = 2})
for k, v in walk do
  for k2, v2 in walk do print(k, k2) end
end
-- expect: a	b
print(type(it), type(walk), it == same)  -- expect: iterator	iterator	true

-- The loop owns its iterator and its table.
t = {"kept", "alive"}
it = pairs(t)
for i, v in it do
  t = nil
  it = nil
  print(i, v)
end
-- expect: 1	kept
-- expect: 2	alive

-- Leaving with break and return, nested.
function find(grid, wanted)
  for row, columns in ipairs(grid) do
    for column, v in ipairs(columns) do
      if v == wanted then return row, column end
      if v == "skip row" then break end
    end
  end
  return nil, "missing"
end
grid = {{1, 2}, {"skip row", 3}, {4, 5}}
print(find(grid, 5), find(grid, 2))  -- expect: 3	1	2
print(find(grid, 3))  -- expect: nil	missing

print(pcall(function() for x in function() end do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in print do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in nil do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in {1, 2} do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in 5 do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in "abc" do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in nil, pairs({}) do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in io.stdout do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in (function() end)() do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() it() end))  -- expect: false	attempt to call a nil value
it = ipairs({})
print(pcall(function() it() end))  -- expect: false	attempt to call a iterator value

for k,  -- expect error: generic for loop expects an iterator
    v in
    {1, 2} do
  print("unreachable")
end
