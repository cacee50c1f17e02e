-- table.sort(t, comp): sorts the elements 1 to #t in place; without comp numbers by value and the rest by printable form.
function show(t) print(table.concat(t, " ")) end
function sorted(t, comp)
  table.sort(t, comp)
  return table.concat(t, " ")
end
print(sorted({3, 1, 2}), sorted({}) == "", sorted({5}), sorted({2, 1}))  -- expect: 1 2 3	true	5	1 2
print(sorted({3, 1, 2}, function(a, b) return a > b end))  -- expect: 3 2 1
print(sorted({"pear", "apple", "fig", "banana"}))  -- expect: apple banana fig pear
print(table.sort({1, 2}))  -- expect:
print(sorted({9223372036854775807, -9223372036854775808, 0, 9223372036854775806 - 1000000}))  -- expect: -9223372036854775808 0 9223372036853775806 9223372036854775807

-- Strings by their bytes, the shorter first.
print(sorted({"b", "B", "a", "ab", "A", "aa", "", "a b", "~", "é"}))  -- expect:  A B a a b aa ab b ~ é
t = {"a\0b", "a", "a\0", "a\0a"}
table.sort(t)
print(#t[1], #t[2], t[3] == "a\0a", t[4] == "a\0b")  -- expect: 1	2	true	true

-- A number and anything else compare by their printable forms, two numbers by value.
print(sorted({"b", 2, "a", 1}))  -- expect: 1 2 a b
print(sorted({true, false, "maybe", 5, 1.5}))  -- expect: 1.5 5 false maybe true
print(sorted({print, "function: a", "z", pcall}))  -- expect: function: a function: pcall function: print z
print(sorted({"10", "9", "1"}), sorted({10, 9, 1}))  -- expect: 1 10 9	1 9 10

-- Only the sequence takes part.
t = {3, 2, 1, nil, 0, x = "x", [-1] = "before"}
table.sort(t)
print(t[1], t[2], t[3], t[4], t[5], t.x, t[-1])  -- expect: 1	2	3	nil	0	x	before

-- Any value of comp but nil and false means "before"; only its first value counts.
function values(v, w) return function(a, b)
  if a < b then return v, w end
  return w, v
end end
print(sorted({3, 1, 2}, values(0, nil)), sorted({3, 1, 2}, values("", false)))  -- expect: 1 2 3	1 2 3
print(sorted({3, 1, 2}, nil))  -- expect: 1 2 3

-- Each shape of input, each size around the limits of the methods: sorted and complete.
function check(name, n, element)
  local t, sum = {}, 0
  for i = 1, n do
    t[i] = element(i, n)
    sum = sum + t[i]
  end
  local u = {}
  for i = 1, n do u[i] = t[i] end
  table.sort(t)
  table.sort(u, function(a, b) return a > b end)
  for i = 1, n do
    sum = sum - t[i]
    if i > 1 and t[i - 1] > t[i] then print(name, n, "wrong at", i) end
    if t[i] ~= u[n + 1 - i] then print(name, n, "comparator differs at", i) end
  end
  if sum ~= 0 then print(name, n, "elements lost") end
end
seed = 7
function random()
  seed = (seed * 16807) % 2147483647
  return seed
end
for k, n in ipairs({2, 3, 15, 16, 17, 18, 33, 100, 255, 256, 257, 1000}) do
  check("ascending", n, function(i) return i end)
  check("descending", n, function(i, n) return n - i end)
  check("equal", n, function() return 4 end)
  check("organ pipe", n, function(i, n) if i < n / 2 then return i end return n - i end)
  check("random", n, random)
  check("floats", n, function(i) return (i * 7919 % 1009) / 4 end)
end

-- Orders that contradict themselves end, with all elements still there.
function permuted(n, comp)
  local t, seen = {}, {}
  for i = 1, n do t[i] = i end
  table.sort(t, comp)
  for i = 1, n do
    if seen[t[i]] then print("doubled", t[i]) end
    seen[t[i]] = true
  end
  return #t
end
print(permuted(1000, function(a, b) return true end))  -- expect: 1000
print(permuted(1000, function() return random() % 2 == 0 end))  -- expect: 1000

-- In the default order NaN goes before everything and everything before NaN, so only the elements are certain.
huge = tonumber("1e300")
nan = huge * huge / (huge * huge)
t = {}
for i = 1, 300 do
  t[i] = i % 50
  if i % 3 == 0 then t[i] = nan end
end
table.sort(t)
nans, sum = 0, 0
for i = 1, 300 do
  if t[i] ~= t[i] then nans = nans + 1 else sum = sum + t[i] end
end
print(#t, nans, sum)  -- expect: 300	100	4900

-- An error in comp leaves the table as it was.
t = {5, 3, 4, 1, 2}
print(pcall(table.sort, t, function(a, b)
  if a == 1 or b == 1 then error("one") end
  return a < b
end))  -- expect: false	one
show(t)  -- expect: 5 3 4 1 2
t = {{3}, {1}, {2}}
table.sort(t, function(a, b)
  t[1], t[2], t[3] = nil, nil, nil
  for i = 1, 10 do local garbage = {i} end
  return a[1] < b[1]
end)
print(#t, t[1][1], t[2][1], t[3][1])  -- expect: 3	1	2	3

-- Sorting within comp, the same table included; comp replaced while it runs.
t = {4, 2, 3, 1}
table.sort(t, function(a, b)
  table.sort(t)
  table.sort({3, 1, 2}, function(c, d) return c > d end)
  return a > b
end)
show(t)  -- expect: 4 3 2 1

print(pcall(table.sort))  -- expect: false	table.sort expects between 1 and 2 arguments
print(pcall(table.sort, nil))  -- expect: false	table.sort expects a table
print(pcall(table.sort, {1, 2}, 5))  -- expect: false	table.sort comparator must be a function

list = {2, 1}
table.sort(list,  -- expect error: table.sort comparator must be a function
  "descending")
