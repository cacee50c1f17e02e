-- Assignment to names, fields and entries.
a, b, c = 1, 2
print(a, b, c)  -- expect: 1	2	nil
a, b = 7, 8, 9
print(a, b)  -- expect: 7	8
local p, q, r = 1
print(p, q, r)  -- expect: 1	nil	nil

-- Only the last call in a list gives all its values.
function three() return 1, 2, 3 end
function none() end
a, b, c, d = three()
print(a, b, c, d)  -- expect: 1	2	3	nil
a, b, c, d = 0, three()
print(a, b, c, d)  -- expect: 0	1	2	3
a, b, c, d = three(), 10
print(a, b, c, d)  -- expect: 1	10	nil	nil
a, b = "kept", none()
print(a, b)  -- expect: kept	nil

-- Fields and entries; both spellings mean the same.
t = {}
t.x, t["y"], t[1] = "x", "y", "one"
print(t.x, t.y, t[1])  -- expect: x	y	one
;(x) = "in parentheses"
print(x)  -- expect: in parentheses

-- A statement that starts with a parenthesis continues the expression before it.
function outer(inner) return function(text) print("inner called with", text) end end
v = outer
(print)("text")
-- expect: inner called with	text
print(v)  -- expect: nil
v = outer;
(print)("text")  -- expect: text

-- Everything but a table refuses assignment.
print(pcall(function() nothing.x = 1 end))  -- expect: false	attempt to assign into a nil value
print(pcall(function() t.nothing.x.y = 1 end))  -- expect: false	attempt to index a nil value
print(pcall(function() x = 5 x.y = 1 end))  -- expect: false	attempt to assign into a number value
print(pcall(function() x = "text" x[1] = 1 end))  -- expect: false	attempt to assign into a string value
print(pcall(function() x = pairs(t) x.y = 1 end))  -- expect: false	attempt to assign into a iterator value

-- A failing statement reports the line of its first token.
target = nil
first,  -- expect error: attempt to assign into a nil value
  target
    .field = 1,
  2
