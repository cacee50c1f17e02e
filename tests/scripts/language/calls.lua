-- Plain calls: arguments, results, what can be called.
function pair(a, b) return a, b end
print(pair(1, 2))  -- expect: 1	2
print(pair(1))  -- expect: 1	nil
print(pair())  -- expect: nil	nil
print(pair(1, 2, 3))  -- expect: 1	2
print(pair(nil, 2))  -- expect: nil	2

-- Only the last argument expands.
function three() return "a", "b", "c" end
function none() end
print(pair(three()))  -- expect: a	b
print(pair(three(), three()))  -- expect: a	a
print(pair("x", three()))  -- expect: x	a
print(pair(none(), "y"))  -- expect: nil	y
print(pair("x", none()))  -- expect: x	nil
print(three(), three())  -- expect: a	a	b	c
print(none(), none())  -- expect: nil
print(three(), none())  -- expect: a
print((three()))  -- expect: a	b	c
print((three()), 1)  -- expect: a	1
print(three() .. "!", -#three())  -- expect: a!	-1

-- A call without values gives a native function no argument at all.
print(none())
-- expect:
print(pcall(type, none()))  -- expect: false	type expects 1 argument
print(pcall(function() return type((none())) end))  -- expect: false	type expects 1 argument
print(type(none() == nil), type(nil))  -- expect: boolean	nil

-- Parameters are local copies, tables are shared.
function modify(n, t)
  n = n + 1
  t.n = n
  t = {n = "replaced"}
  return n, t.n
end
n, t = 1, {}
print(modify(n, t))  -- expect: 2	replaced
print(n, t.n)  -- expect: 1	2
function unused(a, b, c) b = a return b, c end
print(unused(1, 2))  -- expect: 1	nil
function missingIsNil(a, b)
  if b == nil then b = "default" end
  return a .. b
end
print(missingIsNil("x"), missingIsNil("x", "y"), missingIsNil("x", false))  -- expect: xdefault	xy	xfalse
function sameName(a, a) return a end
print(sameName(1, 2))  -- expect: 2

-- Any expression that gives a function can be called.
t = {f = pair, [1] = three, inner = {g = none}}
print(t.f(1, 2))  -- expect: 1	2
print(t[1]())  -- expect: a	b	c
print(t["f"](3), "end")  -- expect: 3	end
function getter(name) return t[name] end
print(getter("f")(5, 6))  -- expect: 5	6
print((t.f)(7, 8))  -- expect: 7	8
print((t.missing or t.f)(9, 10))  -- expect: 9	10
print((function() return three end)()())  -- expect: a	b	c
function chain(n) return function(m) return function(k) return n .. m .. k end end end
print(chain(1)(2)(3))  -- expect: 123
;(function() print("called in place") end)()  -- expect: called in place

-- Calls as arguments of calls, deeply.
function inc(x) return x + 1 end
print(inc(inc(inc(inc(inc(inc(inc(inc(0)))))))))  -- expect: 8
print(pair(inc(1), pair(inc(2), pair(inc(3), 0))))  -- expect: 2	3

-- A function value keeps working under every name.
alias = inc
inc = nil
print(alias(1))  -- expect: 2
function selfRemoving()
  selfRemoving = nil
  return "still running"
end
print(selfRemoving(), selfRemoving)  -- expect: still running	nil
function replaced()
  replaced = function() return "new" end
  return "old"
end
print(replaced(), replaced())  -- expect: old	new

-- Native and script functions are interchangeable.
apply = pcall
print(apply(tostring, 12))  -- expect: true	12
show = print
show("through another name")  -- expect: through another name
print(type(print), type(pair), type(function() end))  -- expect: function	function	function

-- The results of a call statement are dropped.
three()
t.f(1, 2)
getter("f")(1)

-- Calling across lines.
print(pair(
  1,
  pair
    (2)
))
-- expect: 1	2

print(pcall(function() missing() end))  -- expect: false	attempt to call a nil value
print(pcall(function() t.missing() end))  -- expect: false	attempt to call a nil value
print(pcall(function() t() end))  -- expect: false	attempt to call a table value
print(pcall(function() (5)() end))  -- expect: false	attempt to call a number value
print(pcall(function() ("text")() end))  -- expect: false	attempt to call a string value
print(pcall(function() (true)() end))  -- expect: false	attempt to call a boolean value
print(pcall(function() io.stdout() end))  -- expect: false	attempt to call a userdata value
print(pcall(function() pairs(t)() end))  -- expect: false	attempt to call a iterator value
print(pcall(function() three()() end))  -- expect: false	attempt to call a string value
print(pcall(function() none()() end))  -- expect: false	attempt to call a nil value
print(pcall(nil))  -- expect: false	attempt to call a nil value
print(pcall("text", 1))  -- expect: false	attempt to call a string value

-- The line is that of the first token of the whole chain.
result = 1 +
  t.inner  -- expect error: attempt to call a nil value
    .missing(
      1,
      2
    )
