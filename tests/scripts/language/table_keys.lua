-- Which values are keys, and which keys are the same.
t = {}
t[1], t["1"], t[true], t[false], t["true"], t[""] = "integer", "string", "boolean", "other boolean", "text", "empty"
print(t[1], t["1"], t[true], t[false], t["true"], t[""])  -- expect: integer	string	boolean	other boolean	text	empty

-- A whole float is its integer.
t[1.0] = "float"
print(t[1], t[1.0], t[3 / 3])  -- expect: float	float	float
t[1.0000000000000002] = "within the epsilon"
print(t[1], t[0.9999999999999999])  -- expect: within the epsilon	within the epsilon
t[0 / -1] = "zero"
print(t[0], t[0.0], t[0.0000000000000001])  -- expect: zero	zero	zero

-- Large whole floats saturate: 2^63 is the key of the largest integer.
t[9223372036854775808] = "largest"
print(t[9223372036854775807])  -- expect: largest
t[-9223372036854775808] = "smallest"
print(t[0x8000000000000000])  -- expect: smallest

-- Strings with equal bytes are one key, embedded zeros included.
t["a\0b"] = "zero byte"
print(t["a\0" .. "b"], t["a"], t["a\0c"])  -- expect: zero byte	nil	nil

-- The same with a key, a table or nothing in a local.
function store(object, key, value)
  object[key] = value
  return t[key]
end
print(store(t, "text key", 1), store(t, 2.0, 2), store(t, false, 3))  -- expect: 1	2	3
print(pcall(store, 5, 1, "value"))  -- expect: false	attempt to assign into a number value
print(pcall(store, t, {}, "value"))  -- expect: false	table index must be a number, string, or boolean

-- Everything else is refused, for reading and for writing, and nothing is stored.
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
print(pcall(function() return t[nil] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[1.5] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[1.0000000000000005] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[100000000000000000000] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[inf / inf] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[io.stdout] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() t[print] = nil end))  -- expect: false	table index must be a number, string, or boolean

rows = {}
row = 1 + rows  -- expect error: table index must be a number, string, or boolean
  [rows]
