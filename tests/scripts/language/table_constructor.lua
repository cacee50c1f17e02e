-- Table constructors: positional, named and keyed fields, in source order; the last one with a key wins.
x = "value of x"
t = {x, x = x, [x] = "keyed by x"; x == x, [true] = "yes", [10] = 10, [1.0] = "first", ["1"] = "text",}
print(t[1], t[2], t.x, t["value of x"], t[true], t[10], t["1"])
-- expect: first	true	value of x	keyed by x	yes	10	text

-- Each field takes one value: calls are not expanded, not even in last place.
function two() return "p", "q" end
function none() end
t = {two(), two()}
print(#t, t[1], t[2], t[3])  -- expect: 2	p	p	nil
t = {none(), "after", a = two(), b = none()}
print(t[1], t[2], t.a, t.b)  -- expect: nil	after	p	nil
