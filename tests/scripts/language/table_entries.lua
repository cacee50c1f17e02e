-- Which values are keys, and which keys are the same: whole floats, up to the machine epsilon, are integers.
t = {}
t[1], t["1"], t[true], t["true"], t[""], t["a\0b"] = "integer", "string", "boolean", "text", "empty", "zero byte"
print(t[1.0], t["1"], t[true], t[false], t["true"], t[""])  -- expect: integer	string	boolean	nil	text	empty
print(t["a\0" .. "b"], t["a"], t[0.9999999999999999], t[3 / 3])  -- expect: zero byte	nil	integer	integer
t[0 / -1], t[9223372036854775808], t[-9223372036854775808] = "zero", "largest", "smallest"
print(t[0.0000000000000001], t[9223372036854775807], t[0x8000000000000000])  -- expect: zero	largest	smallest
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
for i, key in ipairs({1.5, 1.0000000000000005, 0.0000000000000003, 10000000000000000000, -inf, inf / inf, print, t}) do
  local ok, message = pcall(function() t[key] = nil end)
  if ok or message ~= "table index must be a number, string, or boolean" then print(key, message) end
end
print(pcall(function() return t[nil] end))  -- expect: false	table index must be a number, string, or boolean

-- "#": bytes of a string, leading non-nil entries of a table.
print(#"a\0b", #"é", #("x" .. 12), #{n = 1}, #{1, 2, nil, 4}, #{nil, 2}, #{1, nil})  -- expect: 3	2	3	0	2	0	1
print(pcall(function() return #missing end))  -- expect: false	length operator expects a string or table
t = {}
t[0] = "zero"
t[1 == 1] = "true"
t[1 == 2] = "false"
print(t[true], t[false], t[0])  -- expect: true	false	zero

-- Constructors: positional, named and keyed fields, in source order; the last one with a key wins.
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
