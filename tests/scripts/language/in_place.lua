-- Elements and fields that are exchanged, stored and updated where they stand, and what has to go another way. The
-- usual ways: tests/fuzz/script_generator.cpp.
local function list(t) local s = "" for i = 1, 5 do s = s .. tostring(t[i]) .. " " end return s .. #t end

-- Exchanging two elements: of one list, of two, an element with itself.
local a, b, i, j = {"one", {}, 3}, {4, "five"}, 1, 2
a[i], a[j] = a[j], a[i]
print(type(a[1]), a[2])  -- expect: table	one
a[i], b[j] = b[j], a[i]
print(a[1], type(b[2]))  -- expect: five	table
a[i], a[i] = a[i], a[i]
a[1], a[i + 1] = a[i + 1], a[1]
print(list(a))  -- expect: one five 3 nil nil 3
-- With nothing on one side, with a key of another kind, and where there is no table.
a[i], a[j + 2] = a[j + 2], a[i]
print(list(a))  -- expect: nil five 3 one nil 0
local k, l = "k", 2.0
a[k], a[l] = a[l], a[k]
print(a.k, list(a))  -- expect: five	nil nil 3 one nil 0
print(pcall(function() local n a[i], n[j] = n[j], a[i] end))  -- expect: false	attempt to index a nil value

-- Storing nil, behind the end and far from it keeps the length right.
local t, n = {1, 2, 3}, 3
t[n] = nil
print(#t, list(t))  -- expect: 2	1 2 nil nil nil 2
t[n] = "3"
t[n + 1] = t[n]
t[n + 97] = t[1]
print(#t, t[4], t[100])  -- expect: 4	3	1
local none = {}
t[n - 2] = none[1]
t[2] = none.field
print(list(t))  -- expect: nil nil 3 3 nil 0
local huge = 9223372036854775807
t[huge] = "last"
print(t[huge], t[huge - 0], pcall(function() t[huge + 1] = 1 return t[huge] end))  -- expect: last	last	true	1
print(pcall(function() local x = 1 x[n] = 2 end))  -- expect: false	attempt to assign into a number value
print(pcall(function() t[none] = 2 end))  -- expect: false	table index must be a number, string, or boolean

-- Updating: whole results, overflow, another key, a field that is missing or no number.
local p = {x = 0.5, big = 9223372036854775807, s = "text", count = {}}
p.x = p.x + 0.5
p.big = p.big + 1
p.x = p.x * p.x
print(p.x, p.big)  -- expect: 1	9223372036854775807
p.count[k] = 1
p.count[k] = p.count[k] + 1
t[n] = 7
t[n] = t[n] - p.x
print(p.count.k, t[3])  -- expect: 2	6
print(pcall(function() p.s = p.s + 1 end), pcall(function() p.y = p.y + 1 end))  -- expect: false	false	operator '+' expects numbers
print(pcall(function() n.x = n.x + n.y end))  -- expect: false	attempt to index a number value
print(pcall(function() local q p.x = p.x + q.y end), p.x)  -- expect: false	1
-- What runs in between may change the place, give it away, or take the table's entries elsewhere.
p.x = p.x + (function() p.x = {} return 1 end)()
print(p.x)  -- expect: 2
t[n] = t[n] + (function() t[n] = nil t = {} return 1 end)()
print(t[n])  -- expect: 7
local owner = p
p.x = p.x + (function() p = {} return 1 end)()
print(owner.x, p.x)  -- expect: 2	3
p.x = p.x * (function() for q = 1, 40 do p[q .. "key"] = q end p.x = nil return 2 end)()
print(p.x)  -- expect: 6
print(pcall(function() p.x = p.x + (function() p.x = "kept" error("stop") end)() end), p.x)  -- expect: false	kept
-- The same where the table is in a global or captured, which a function can change.
record = {n = 1, s = string.rep("s", 20)}
local before = record
function renew() record = {n = 10} return 5 end
record.n = record.n + renew()
print(record.n, before.n)  -- expect: 6	1
for i = 1, 2 do
  record = before
  print(pcall(function() record.s = record.s + renew() end), before.s)  -- expect: false	ssssssssssssssssssss
  -- expect: false	ssssssssssssssssssss
end
