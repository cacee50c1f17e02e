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
-- So it does at any comparison, of records, too, whether it has to take a heap's way or not.
calls, failing = 0, 0
function record(i) return {key = i * 7919 % 101, text = "r" .. i} end
function byKey(a, b)
  calls = calls + 1
  if calls == failing then error("stop") end
  return a.key < b.key
end
records, first, all = {}, {}, true
for i = 1, 100 do records[i] = record(i) first[i] = records[i] end
for at = 1, 600, 7 do
  calls, failing = 0, at
  all = all and pcall(table.sort, records, byKey) == false
  for i = 1, 100 do all = all and records[i] == first[i] and records[i].text == "r" .. i end
end
failing = 0
table.sort(records, byKey)
for i = 2, 100 do all = all and records[i - 1].key <= records[i].key end
print(all)  -- expect: true
-- What is in order, forwards or backwards, takes one look.
function countCalls(t, comp)
  calls = 0
  table.sort(t, function(a, b) calls = calls + 1 return comp(a, b) end)
  return calls .. ": " .. table.concat(t, " ")
end
print(countCalls({1, 1, 2, 5}, function(a, b) return a < b end))  -- expect: 3: 1 1 2 5
print(countCalls({1, 3, 5, 7}, function(a, b) return a > b end))  -- expect: 3: 7 5 3 1
print(sorted({1, 2, 3, 0}), sorted({3, 2, 1, 4}), sorted({2, 2, 1}), sorted({"b", "a", "", "ab", "a\0"}) == " a a\0 ab b")  -- expect: 0 1 2 3	1 2 3 4	1 2 2	true
texts = {"abcdefghi", "abcdefgh", "abcdefghé", "abcdefgé", "abcdefga"}
print(sorted(texts) == "abcdefga abcdefgh abcdefghi abcdefghé abcdefgé")  -- expect: true
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
