-- tostring(v): the printable form of any value. type(v): its kind; both kinds of numbers share one name.
print(tostring(nil), tostring(true), tostring(-5), tostring(1.0), tostring(0.5))  -- expect: nil	true	-5	1	0.5
print(#tostring("a\0b"), type(tostring(1)), tostring(1) == 1, tostring(print))  -- expect: 3	string	false	function: print

-- Objects by address: the same text for the same object, another one for another.
t = {}
print(tostring(t) == tostring(t), tostring(t) == tostring({}))  -- expect: true	false
print(tostring(t):sub(1, 9), tostring(io.stdout):sub(1, 12), tostring(pairs(t)):sub(1, 12))
-- expect: table: 0x	userdata: 0x	iterator: 0x

print(type(nil), type(true), type(1.5), type({}), type(print))  -- expect: nil	boolean	number	table	function
