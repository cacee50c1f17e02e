-- Table constructors: positional, named and keyed fields, in source order.
t = {x = 1, y = "two", ["z z"] = 3, [4] = "four", [true] = "yes"}
print(t.x, t.y, t["z z"], t[4], t[true], t[false])  -- expect: 1	two	3	four	yes	nil

-- Positional fields count on their own, whatever stands between them.
t = {"a", x = 1, "b", [10] = 2, "c"}
print(t[1], t[2], t[3], #t)  -- expect: a	b	c	3

-- A name is a key only when "=" follows; otherwise it is an expression.
x = "value of x"
t = {x, x = x, [x] = "keyed by x", x == x}
print(t[1], t.x, t["value of x"], t[2])  -- expect: value of x	value of x	keyed by x	true

-- The last field with a key wins.
t = {1, 2, [1] = 9}
print(t[1], t[2])  -- expect: 9	2
t = {[1] = "i", [1.0] = "f", ["1"] = "s"}
print(t[1], t["1"])  -- expect: f	s

-- Each field takes one value: calls are not expanded, not even in last place.
function two() return "p", "q" end
function none() end
t = {two(), two()}
print(#t, t[1], t[2], t[3])  -- expect: 2	p	p	nil
t = {none(), "after", a = two(), b = none()}
print(t[1], t[2], t.a, t.b)  -- expect: nil	after	p	nil

-- nil values leave holes.
t = {nil, 2, nil, 4}
print(t[1], t[2], t[3], t[4], #t)  -- expect: nil	2	nil	4	0

-- Keys are evaluated before their values, and refused before them too.
function note(value)
  print("field " .. value)
  return value
end
t = {note("1"), [note("k")] = note("v"), n = note("n"), note("2")}
-- expect: field 1
-- expect: field k
-- expect: field v
-- expect: field n
-- expect: field 2
print(t[1], t.k, t.n, t[2])  -- expect: 1	v	n	2
print(pcall(function() return {note("before"), [nil] = note("never"), note("never")} end))
-- expect: field before
-- expect: false	table keys must be numbers, strings, or booleans

bad = {
  1,
  ok = 2,
  [bad] = 3,  -- expect error: table keys must be numbers, strings, or booleans
  4
}
