-- Assignment to names, fields and entries.
x = 1
x = x + 1
print(x)  -- expect: 2
a, b = 1, 2
print(a, b)  -- expect: 1	2
a, b = b, a
print(a, b)  -- expect: 2	1
a, b, c = 1, 2
print(a, b, c)  -- expect: 1	2	nil
a, b = 7, 8, 9
print(a, b)  -- expect: 7	8
local p, q, r = 1
print(p, q, r)  -- expect: 1	nil	nil
local m, n
print(m, n)  -- expect: nil	nil
m, n = p, "n"
print(m, n)  -- expect: 1	n

-- Only the last call in a list gives all its values.
function three() return 1, 2, 3 end
function none() end
a, b, c, d = three()
print(a, b, c, d)  -- expect: 1	2	3	nil
a, b, c, d = 0, three()
print(a, b, c, d)  -- expect: 0	1	2	3
a, b, c, d = three(), 10
print(a, b, c, d)  -- expect: 1	10	nil	nil
a, b = none(), none()
print(a, b)  -- expect: nil	nil
a, b = "kept", none()
print(a, b)  -- expect: kept	nil
a, b, c = (three())
print(a, b, c)  -- expect: 1	2	3

-- Fields and entries; both spellings mean the same.
t = {}
t.x, t["y"], t[1] = "x", "y", "one"
print(t.x, t.y, t[1])  -- expect: x	y	one
t.x, t.y = t.y, t.x
print(t.x, t.y)  -- expect: y	x
t.inner = {}
t.inner.value = 5
t.inner["list"] = {1}
t.inner.list[2] = 2
print(t.inner.value, #t.inner.list)  -- expect: 5	2
function whole() return t end
whole().x = "through a call"
whole()["y"] = "also"
print(t.x, t.y)  -- expect: through a call	also
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
print(pcall(function() t.nothing.x = 1 end))  -- expect: false	attempt to assign into a nil value
print(pcall(function() t.nothing.x.y = 1 end))  -- expect: false	attempt to index a nil value
print(pcall(function() x = 5 x.y = 1 end))  -- expect: false	attempt to assign into a number value
print(pcall(function() x = "text" x[1] = 1 end))  -- expect: false	attempt to assign into a string value
print(pcall(function() x = true x.y = 1 end))  -- expect: false	attempt to assign into a boolean value
print(pcall(function() print.x = 1 end))  -- expect: false	attempt to assign into a function value
print(pcall(function() io.stdout.x = 1 end))  -- expect: false	attempt to assign into a userdata value
print(pcall(function() x = pairs(t) x.y = 1 end))  -- expect: false	attempt to assign into a iterator value

-- A failing statement reports the line of its first token.
target = nil
first,  -- expect error: attempt to assign into a nil value
  target
    .field = 1,
  2
