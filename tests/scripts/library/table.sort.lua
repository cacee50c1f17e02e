-- table.sort(t, comp): sorts the elements 1 to #t in place; without comp numbers by value and the rest by printable form.
function sorted(t, comp)
  table.sort(t, comp)
  return table.concat(t, " ")
end
print(sorted({true, "b", 2, false, "B", 1.5, "a", "10"}))  -- expect: 1.5 10 2 B a b false true
t = {3, 2, 1, nil, 0, x = "x", [-1] = "before"}
table.sort(t)
print(t[1], t[2], t[3], t[4], t[5], t.x, t[-1])  -- expect: 1	2	3	nil	0	x	before
-- Any value of comp but nil and false means "before"; only its first value counts.
function less(v, w) return function(a, b) if a < b then return v, w end return w, v end end
print(sorted({3, 1, 2}, less(0, nil)), sorted({3, 1, 2}, less("", false)))  -- expect: 1 2 3	1 2 3

-- An error in comp leaves the table as it was.
t = {5, 3, 4, 1, 2}
print(pcall(table.sort, t, function(a, b)
  if a == 1 or b == 1 then error("one") end
  return a < b
end))  -- expect: false	one
print(table.concat(t, " "))  -- expect: 5 3 4 1 2
-- What comp does to the table, or sorts itself, does not matter.
t = {{3}, {1}, {2}}
table.sort(t, function(a, b)
  t[1], t[2], t[3] = nil, nil, nil
  table.sort(t)
  table.sort({3, 1, 2}, function(c, d) return c > d end)
  return a[1] < b[1]
end)
print(#t, t[1][1], t[2][1], t[3][1])  -- expect: 3	1	2	3
print(table.sort({}))  -- expect: 
