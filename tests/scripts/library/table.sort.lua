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
print(sorted({1.5, 1, -0.5, 2, 1.25, -3}))  -- expect: -3 -0.5 1 1.25 1.5 2
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
tables = {{}, {}, {}, {}, {}}
table.sort(tables)
for i = 2, 5 do
  if not (tostring(tables[i - 1]) < tostring(tables[i])) then print("wrong order at", i) end
end

-- Only the sequence takes part.
t = {3, 2, 1, nil, 0, x = "x", [-1] = "before"}
table.sort(t)
print(t[1], t[2], t[3], t[4], t[5], t.x, t[-1])  -- expect: 1	2	3	nil	0	x	before
t = {}
for i = 100, 1, -1 do t[i] = (i * 37) % 101 end
table.sort(t)
for i = 1, 100 do
  if t[i] ~= i then print("wrong at", i, t[i]) end
end

-- Any value of comp but nil and false means "before"; only its first value counts.
function values(v, w) return function(a, b)
  if a < b then return v, w end
  return w, v
end end
print(sorted({3, 1, 2}, values(0, nil)), sorted({3, 1, 2}, values("", false)))  -- expect: 1 2 3	1 2 3
print(sorted({3, 1, 2}, function(a, b) if a < b then return true end end))  -- expect: 1 2 3
print(sorted({3, 1, 2}, function(a, b, c) return c == nil and a < b end))  -- expect: 1 2 3
print(sorted({1, 1, 1}, function() end))  -- expect: 1 1 1
print(sorted({3, 1, 2}, nil))  -- expect: 1 2 3

-- Sorting by something else than the elements themselves.
words = {"delta", "be", "a", "see"}
table.sort(words, function(a, b) return #a < #b end)
show(words)  -- expect: a be see delta
records = {}
for i = 1, 50 do records[i] = {key = (i * 29) % 53, name = "n" .. i} end
table.sort(records, function(a, b) return a.key < b.key end)
for i = 2, 50 do
  if records[i - 1].key >= records[i].key then print("wrong at", i) end
end

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
for k, n in ipairs({2, 3, 15, 16, 17, 18, 33, 100, 255, 256, 257, 1000}) do
  check("ascending", n, function(i) return i end)
  check("descending", n, function(i, n) return n - i end)
  check("equal", n, function() return 4 end)
  check("two values", n, function(i) return i % 2 end)
  check("organ pipe", n, function(i, n) if i < n / 2 then return i end return n - i end)
  check("saw", n, function(i) return i % 13 end)
  check("random", n, function()
    seed = (seed * 16807) % 2147483647
    return seed
  end)
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
calls = 0
print(permuted(1000, function(a, b) return true end))  -- expect: 1000
print(permuted(1000, function(a, b) return a <= b end))  -- expect: 1000
print(permuted(1000, function(a, b) return a ~= b end))  -- expect: 1000
print(permuted(1000, math.max), permuted(1000, function(a, b) return false end))  -- expect: 1000	1000
print(permuted(1000, function(a, b)
  calls = calls + 1
  seed = (seed * 16807) % 2147483647
  return seed % 2 == 0
end), calls < 40000)  -- expect: 1000	true

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
t = {"b", "a", 3, "c", {}}
print(pcall(table.sort, t, function(a, b) return a < b end))  -- expect: false	ordered comparisons require matching numbers or strings
print(t[1], t[2], t[3], t[4], #t)  -- expect: b	a	3	c	5
t = {{1}, {2}}
print(pcall(table.sort, t, function(a, b) return a < b end))  -- expect: false	ordered comparisons require matching numbers or strings
print(t[1][1], t[2][1])  -- expect: 1	2

-- What comp does to the table is overwritten as far as the sorted sequence reaches.
t = {3, 1, 2}
table.sort(t, function(a, b)
  t[1], t[2], t[3] = nil, nil, nil
  return a < b
end)
show(t)  -- expect: 1 2 3
t = {3, 1, 2}
table.sort(t, function(a, b)
  t[2], t[4], t.x = "overwritten", "appended", "field"
  return a < b
end)
print(t[1], t[2], t[3], t[4], t.x, #t)  -- expect: 1	2	3	appended	field	4
t = {{3}, {1}, {2}}
table.sort(t, function(a, b)
  t[1], t[2], t[3] = nil, nil, nil
  for i = 1, 10 do local garbage = {i} end
  return a[1] < b[1]
end)
print(#t, t[1][1], t[2][1], t[3][1])  -- expect: 3	1	2	3
names = {}
for i = 1, 40 do names[i] = "name" .. (i * 7) % 41 end
table.sort(names, function(a, b)
  while #names > 0 do table.remove(names) end
  return a < b
end)
print(#names, names[1], names[2], names[40])  -- expect: 40	name1	name10	name9

-- Sorting within comp, the same table included; comp replaced while it runs.
t = {4, 2, 3, 1}
table.sort(t, function(a, b)
  table.sort(t)
  table.sort({3, 1, 2}, function(c, d) return c > d end)
  return a > b
end)
show(t)  -- expect: 4 3 2 1
function by(a, b)
  by = nil
  return a < b
end
t = {3, 1, 2}
table.sort(t, by)
show(t)  -- expect: 1 2 3
count = 0
t = {2, 1}
table.sort(t, function(a, b)
  count = count + 1
  return pcall(error) or a < b
end)
print(t[1], t[2], count > 0)  -- expect: 1	2	true

-- Elements survive that only the sort still holds, and results live on.
function fresh() return {name = "x" .. seed} end
for round = 1, 20 do
  local list = {}
  for i = 1, 20 do
    seed = (seed * 16807) % 2147483647
    list[i] = fresh()
  end
  table.sort(list, function(a, b)
    list[1] = 0
    return a.name < b.name
  end)
  for i = 2, 20 do
    if list[i - 1].name > list[i].name then print("wrong", round, i) end
  end
end

print(pcall(table.sort))  -- expect: false	table.sort expects between 1 and 2 arguments
print(pcall(table.sort, {}, nil, nil))  -- expect: false	table.sort expects between 1 and 2 arguments
print(pcall(table.sort, nil))  -- expect: false	table.sort expects a table
print(pcall(table.sort, "text"))  -- expect: false	table.sort expects a table
print(pcall(table.sort, {1, 2}, 5))  -- expect: false	table.sort comparator must be a function
print(pcall(table.sort, {}, "<"))  -- expect: false	table.sort comparator must be a function
print(pcall(table.sort, {1}, false))  -- expect: false	table.sort comparator must be a function
print(pcall(table.sort, {1, 2}, {}))  -- expect: false	table.sort comparator must be a function

list = {2, 1}
table.sort(list,  -- expect error: table.sort comparator must be a function
  "descending")
