-- Table constructors: positional, named and keyed fields, in source order.
t = {}
print(#t, t[1], t.x)  -- expect: 0	nil	nil
t = {10, 20, 30}
print(#t, t[1], t[2], t[3], t[4])  -- expect: 3	10	20	30	nil
t = {x = 1, y = "two", ["z z"] = 3, [4] = "four", [true] = "yes"}
print(t.x, t.y, t["z z"], t[4], t[true], t[false])  -- expect: 1	two	3	four	yes	nil
t = {1, 2; x = 3, [4] = 5,}
print(t[1], t[2], t.x, t[4], #t)  -- expect: 1	2	3	5	2
t = {1; 2; 3;}
print(#t)  -- expect: 3
t = {
  name = "nested",
  list = {1, {2, {3}}},
  {inner = {deep = "value"}},
}
print(t.name, t.list[2][2][1], t[1].inner.deep)  -- expect: nested	3	value

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
t = {[1] = 9, 1, [2] = 8}
print(t[1], t[2])  -- expect: 1	8
t = {k = 1, k = 2, ["k"] = 3}
print(t.k)  -- expect: 3
t = {[1] = "i", [1.0] = "f", ["1"] = "s"}
print(t[1], t["1"])  -- expect: f	s

-- Each field takes one value: calls are not expanded, not even in last place.
function two() return "p", "q" end
function none() end
t = {two(), two()}
print(#t, t[1], t[2], t[3])  -- expect: 2	p	p	nil
t = {two()}
print(#t, t[2])  -- expect: 1	nil
t = {(two())}
print(#t, t[2])  -- expect: 1	nil
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
print(pcall(function() return {[{}] = 1} end))  -- expect: false	table keys must be numbers, strings, or booleans
print(pcall(function() return {[print] = 1} end))  -- expect: false	table keys must be numbers, strings, or booleans
print(pcall(function() return {[1.5] = 1} end))  -- expect: false	table keys must be numbers, strings, or booleans
print(pcall(function() return {[pairs({})] = 1} end))  -- expect: false	table keys must be numbers, strings, or booleans
print(pcall(function() return {[io.stdout] = 1} end))  -- expect: false	table keys must be numbers, strings, or booleans

-- Every evaluation makes a new table.
function fresh() return {0} end
a = fresh()
b = fresh()
a[1] = 1
print(a[1], b[1], a == b)  -- expect: 1	0	false

-- Many fields.
t = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25,
  26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 48, 49,
  50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71, 72, 73}
print(#t, t[64], t[65], t[73])  -- expect: 73	64	65	73

bad = {
  1,
  ok = 2,
  [bad] = 3,  -- expect error: table keys must be numbers, strings, or booleans
  4
}
