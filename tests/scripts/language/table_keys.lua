-- Which values are keys, and which keys are the same.
t = {}
t[1] = "integer"
t["1"] = "string"
t[true] = "boolean"
t[false] = "other boolean"
t["true"] = "text"
t[""] = "empty"
print(t[1], t["1"], t[true], t[false], t["true"], t[""])  -- expect: integer	string	boolean	other boolean	text	empty

-- A whole float is its integer.
t[1.0] = "float"
print(t[1], t[1.0], t[3 / 3])  -- expect: float	float	float
t[2 / 1] = "two"
print(t[2], #t)  -- expect: two	2
t[1.0000000000000002] = "within the epsilon"
print(t[1], t[0.9999999999999999])  -- expect: within the epsilon	within the epsilon
t[0 / -1] = "zero"
print(t[0], t[0.0], t[0.0000000000000001])  -- expect: zero	zero	zero
t[-3.0] = "minus three"
print(t[-3])  -- expect: minus three
t[4503599627370496.0] = "2^52"
print(t[4503599627370496])  -- expect: 2^52

-- Large whole floats saturate: 2^63 is the key of the largest integer.
t[9223372036854775808] = "largest"
print(t[9223372036854775807])  -- expect: largest
t[-9223372036854775808] = "smallest"
print(t[0x8000000000000000])  -- expect: smallest

-- Keys are fields: t.name is t["name"].
t.name = "by name"
t["other"] = "by index"
print(t["name"], t.other, t.missing)  -- expect: by name	by index	nil
key = "computed"
t[key .. 1] = "joined"
print(t.computed1)  -- expect: joined

-- Strings with equal bytes are one key, embedded zeros included.
t["a\0b"] = "zero byte"
print(t["a\0" .. "b"], t["a"], t["a\0c"])  -- expect: zero byte	nil	nil

-- Storing nil makes an entry absent.
t.name = nil
t[1] = nil
print(t.name, t[1], t["1"])  -- expect: nil	nil	string
t.never = nil
print(t.never)  -- expect: nil
t.name = "again"
print(t.name)  -- expect: again

-- Everything else is refused, for reading and for writing, and nothing is stored.
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
print(pcall(function() return t[nil] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[1.5] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[1.0000000000000005] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[100000000000000000000] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[inf] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[inf / inf] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[{}] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[t] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[print] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[pairs(t)] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() return t[io.stdout] end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() t[nil] = 1 end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() t[0.5] = 1 end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() t[{}] = 1 end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() t[-inf] = 1 end))  -- expect: false	table index must be a number, string, or boolean
print(pcall(function() t[print] = nil end))  -- expect: false	table index must be a number, string, or boolean

rows = {}
row = 1 + rows  -- expect error: table index must be a number, string, or boolean
  [rows]
