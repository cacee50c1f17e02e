-- Plain calls: arguments, results, what can be called.
function pair(a, b) return a, b end
print(pair(1))  -- expect: 1	nil
print(pair(1, 2, 3))  -- expect: 1	2

-- Only the last argument expands.
function three() return "a", "b", "c" end
function none() end
print(pair(three()))  -- expect: a	b
print(pair(three(), three()))  -- expect: a	a
print(pair("x", three()))  -- expect: x	a
print(three(), three())  -- expect: a	a	b	c
print(three(), none())  -- expect: a
print((three()))  -- expect: a	b	c
print((three()), 1)  -- expect: a	1

-- A call without values gives a native function no argument at all.
print(none())
-- expect:
print(pcall(function() return type((none())) end))  -- expect: false	type expects 1 argument

-- Any expression that gives a function can be called.
t = {f = pair, [1] = three, inner = {g = none}}
print((t.missing or t.f)(9, 10))  -- expect: 9	10
print((function() return three end)()())  -- expect: a	b	c
print(pair(
  1,
  pair
    (2)
))
-- expect: 1	2
;(function() print("called in place") end)()  -- expect: called in place

print(pcall(function() missing() end))  -- expect: false	attempt to call a nil value
print(pcall(function() t() end))  -- expect: false	attempt to call a table value
print(pcall(function() (5)() end))  -- expect: false	attempt to call a number value
print(pcall(function() ("text")() end))  -- expect: false	attempt to call a string value
print(pcall(function() (true)() end))  -- expect: false	attempt to call a boolean value
print(pcall(function() io.stdout() end))  -- expect: false	attempt to call a userdata value
print(pcall(function() pairs(t)() end))  -- expect: false	attempt to call a iterator value

-- The line is that of the first token of the whole chain.
result = 1 +
  t.inner  -- expect error: attempt to call a nil value
    .missing(
      1,
      2
    )
