-- tostring(v): the printable form of any value.
print(tostring(nil), tostring(true), tostring(false))  -- expect: nil	true	false
print(tostring(12), tostring(-5), tostring(9223372036854775807))  -- expect: 12	-5	9223372036854775807
print(tostring(1.0), tostring(0.5), tostring(100000.0), tostring(1000000.0))  -- expect: 1	0.5	100000	1e+06
print(tostring("text"), "[" .. tostring("") .. "]", #tostring("a\0b"))  -- expect: text	[]	3
print(type(tostring(1)), tostring(1) == "1", tostring(1) == 1)  -- expect: string	true	false
print(tostring(print), tostring(function() end))  -- expect: function: print	function: <anonymous>

-- Objects by address: the same text for the same object, another one for another.
t = {}
u = {}
print(tostring(t) == tostring(t), tostring(t) == tostring(u))  -- expect: true	false
print(tostring(t):sub(1, 9), tostring(io.stdout):sub(1, 12), tostring(pairs(t)):sub(1, 12))  -- expect: table: 0x	userdata: 0x	iterator: 0x
print(tostring(io.stdout) == tostring(io.stdout), tostring(io.stdout) == tostring(io.stderr))  -- expect: true	false

-- Exactly one argument.
print(pcall(tostring, 1, 2))  -- expect: false	tostring expects 1 argument

tostring(1, 2)
-- expect error bare: tostring expects 1 argument
