-- All right-hand values first; then target by target: object, table check, key, store.
function note(label, value)
  print(label)
  return value
end
t = {}
u = {}
note("t", t)[note("t key", 1)], note("u", u)[note("u key", 2)] = note("first", "a"), note("second", "b")
-- expect: first
-- expect: second
-- expect: t
-- expect: t key
-- expect: u
-- expect: u key
print(t[1], u[2])  -- expect: a	b
note("object", t)[note("key", "k")] = note("value", 2)
-- expect: value
-- expect: object
-- expect: key

-- Each store is visible to the targets after it.
i, a = 1, {}
i, a[i] = i + 1, 20
print(i, a[1], a[2])  -- expect: 2	nil	20
a[i], i = "before", 5
print(i, a[2], a[5])  -- expect: 5	before	nil
x, x = "first", "second"
print(x)  -- expect: second
old = a
a.x, a = "in the old table", {}
print(old.x, a.x)  -- expect: in the old table	nil
a, a.x = {}, "in the new table"
print(a.x)  -- expect: in the new table

-- Locals behave the same.
function swap()
  local i, s = 1, {"one", "two"}
  i, s[i] = 2, "changed"
  return i, s[1], s[2]
end
print(swap())  -- expect: 2	one	changed

-- In a declaration the values see the names that stood before it.
local y = 1
local y, z = y + 1, y
local d, d = "first", "second"
print(y, z, d)  -- expect: 2	1	second

-- The table check comes before the key is evaluated; the values ran already.
nothing = nil
print(pcall(function() nothing[note("never")] = note("value", 1) end))
-- expect: value
-- expect: false	attempt to assign into a nil value
print(pcall(function() t[note("key")] = note("value", 1) end))
-- expect: value
-- expect: key
-- expect: false	table index must be a number, string, or boolean

-- What was stored before a failing target stays; later targets are untouched.
g, h = "g", "h"
print(pcall(function() g, nothing.x, h = "stored", 1, "skipped" end))  -- expect: false	attempt to assign into a nil value
print(g, h)  -- expect: stored	h

-- A function on the right may replace the table on the left.
box = {name = "old"}
before = box
function replace()
  box = {name = "new"}
  return "stored"
end
box.field = replace()
print(before.field, box.field)  -- expect: nil	stored
