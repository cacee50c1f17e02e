-- Elements and fields that are exchanged, stored and updated where they stand, and what has to go another way.
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

-- Rows of rows, and tables that variables of an outer function or globals hold.
rows = {{0, 0}, {0, 0}}
local function fill(r, c, v)
  rows[r][c] = v
  rows[r][c] = rows[r][c] + c
  a[r] = rows[r]
  a[r][c] = a[r][c] * 2
end
fill(1, 2, 10)
fill(2, 1, 0.5)
print(rows[1][2], rows[2][1], rows[1][1], a[1] == rows[1])  -- expect: 24	3	0	true
print(pcall(fill, 3, 1, 1))  -- expect: false	attempt to assign into a nil value

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

-- Several local variables at once, with a function that gives more or less than is asked.
local function two() return "first", "second" end
i, j = j, i
print(i, j)  -- expect: 2	1
i, j = two(), two()
print(i, j)  -- expect: first	first
i, i = 1, {}
print(type(i))  -- expect: table

-- Conditions on elements: nil, behind the end, of what is no table; the first that decides ends the chain.
local flags, f, g = {true, false}, 1, 2
print(not flags[g] and flags[f] and not flags[g + 1] and 1, flags[g] or flags[f])  -- expect: 1	true
if not flags[g] and flags[f] and not flags[g + 1] and not flags[f + 7] then print("all") end  -- expect: all
if flags[g] or flags[g + 1] or not flags[f] or false then print("none") end
if not flags[f] then print("not") elseif not flags[g] then print("else") end  -- expect: else
if flags[f] then print("if") end  -- expect: if
while flags[f] and flags[g] or not flags[f] do print("never") end
print(pcall(function() if flags[g] and none[1][f] or none.x[f] then return 1 end end))  -- expect: false	attempt to index a nil value
print(pcall(function() return not flags[f] and none.x[f] or #none end))  -- expect: true	0

-- Numeric loops up to the largest integer, to a float, from a float, with nothing to do.
for q = huge - 1, huge do print(q) end
-- expect: 9223372036854775806
-- expect: 9223372036854775807
for q = 2, 3.5 do print(q) end
-- expect: 2
-- expect: 3
for q = 1.5, 2 do print(q) end  -- expect: 1.5
for q = 2, 1 do print(q) end
print(pcall(function() for q = 1, "3" do end end))  -- expect: false	numeric for loop expects numeric bounds
print(pcall(function() for q = {}, none.x.y do end end))  -- expect: false	attempt to index a nil value
