-- Assignment to names, fields and entries, each of which the targets after it see.
i, a = 1, {}
i, a[i] = i + 1, 20
print(i, a[1], a[2])  -- expect: 2	nil	20
old = a
a.x, a = "in the old table", {}
print(old.x, a.x)  -- expect: in the old table	nil
local j, s, nothing = 1, {"one", "two"}
j, s[j] = 2, "changed"
print(j, s[1], s[2], nothing)  -- expect: 2	one	changed	nil
-- In a declaration the values see the names that stood before it.
local y = 1
local y, z = y + 1, y
print(y, z)  -- expect: 2	1

-- What was stored before a failing target stays.
g, h = "g", "h"
print(pcall(function() g, nothing.x, h = "stored", 1, "skipped" end), g, h)  -- expect: false	stored	h
print(pcall(function() x = "text" x[1] = 1 end))  -- expect: false	attempt to assign into a string value
print(pcall(function() x = {5} x[1].y = 1 end))  -- expect: false	attempt to assign into a number value

-- A function on the right may replace the table on the left.
box = {}
before = box
box.field = (function() box = {} return "stored" end)()
print(before.field, box.field)  -- expect: nil	stored

-- Results beyond the targets go before the targets are evaluated, whose calls use the same slots.
function several() return 1, 2, {}, "x" .. 1, {} end
function key(a, b, c) return (a or 0) .. "k" end
a = {}
a.x, a.y = several()
a[key(0, {}, {})], a[key(1, 2, 3)] = 3, several()
print(a.x, a.y, a["0k"], a["1k"])  -- expect: 1	2	3	1
function two() return 1, {2} end
a.x, a.y, a["0k"], a.z = two()
print(a)  -- expect: {1k: 1, x: 1, y: {2}}
print(pcall(function() a.x, a[nil] = several() end))  -- expect: false	table index must be a number, string, or boolean
