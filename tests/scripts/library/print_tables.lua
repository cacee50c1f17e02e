-- How print renders tables: lists as {a, b}, all others as {key: value}.
print({})  -- expect: {}
print({1, 2, 3})  -- expect: {1, 2, 3}
print({"text", 1.5, 2.0, true, false})  -- expect: {text, 1.5, 2, true, false}
print({{}, {{}}, {1, {2}}})  -- expect: {{}, {{}}, {1, {2}}}
print({print, function() end})  -- expect: {[function print], [function <anonymous>]}
print({"a, b", "{}", ""}, {""})  -- expect: {a, b, {}, }	{}
print({1}, {2}, "x")  -- expect: {1}	{2}	x

-- Any other key makes it an object; keys that look like integers come first, ascending, then
-- the others bytewise.
print({x = 1})  -- expect: {x: 1}
print({10, 20, x = 1})  -- expect: {1: 10, 2: 20, x: 1}
print({b = 1, a = 2, c = 3, B = 4, _ = 5, ab = 6})  -- expect: {B: 4, _: 5, a: 2, ab: 6, b: 1, c: 3}
print({[10] = "ten", [9] = "nine", [-1] = "minus", [0] = "zero", [100] = "hundred"})
-- expect: {-1: minus, 0: zero, 9: nine, 10: ten, 100: hundred}
print({["10"] = "a", [9] = "b", x = "c", ["2"] = "d"})  -- expect: {2: d, 9: b, 10: a, x: c}
print({[true] = 1, [false] = 2, fa = 3, zz = 4})  -- expect: {fa: 3, false: 2, true: 1, zz: 4}
print({["key with spaces"] = 1, ["é"] = 2, z = 3, [""] = 4})  -- expect: {: 4, key with spaces: 1, z: 3, é: 2}
print({f = print, t = {1, x = {}}, s = "s"})  -- expect: {f: [function print], s: s, t: {1: 1, x: {}}}

-- Holes make an object of the entries that are there.
print({1, nil, 3})  -- expect: {1: 1, 3: 3}
print({nil, 2})  -- expect: {2: 2}
print({nil, nil}, {1, nil})  -- expect: {}	{1}
t = {1, 2, 3}
t[2] = nil
print(t)  -- expect: {1: 1, 3: 3}
t[3] = nil
print(t)  -- expect: {1}
t[1] = nil
print(t)  -- expect: {}

-- A list may be filled in any order.
t = {}
t[3] = "c"
t[1] = "a"
print(t)  -- expect: {1: a, 3: c}
t[2] = "b"
print(t)  -- expect: {a, b, c}
t = {[1] = "x", [2] = "y"}
print(t)  -- expect: {x, y}
t = {}
for i = 1, 70 do t[i] = i % 10 end
print(t)
-- expect: {1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 0}

-- A far key makes an object until the list has grown over it.
t = {}
t[66] = "far"
print(t)  -- expect: {66: far}
for i = 1, 65 do t[i] = 0 end
t[67] = "end"
print(#t, pcall(print, {t[66], t[67]}))
-- expect: {far, end}
-- expect: 67	true	nil
for i = 1, 64 do t[i] = nil end
print(t)  -- expect: {65: 0, 66: far, 67: end}

-- The same table several times is no cycle.
shared = {"s"}
print({shared, shared, {shared, k = shared}})  -- expect: {{s}, {s}, {1: {s}, k: {s}}}

-- A table inside itself cannot be printed, at whatever depth; taken apart it can.
loop = {name = "loop"}
loop.self = loop
print(pcall(print, loop))  -- expect: false	value cannot be bridged out of TarvelLua
print(pcall(print, "never", {{loop}}))  -- expect: false	value cannot be bridged out of TarvelLua
loop.self = {deeper = {{loop}}}
print(pcall(print, loop))  -- expect: false	value cannot be bridged out of TarvelLua
loop.self = nil
loop = {"in a list"}
loop[2] = loop
print(pcall(print, loop))  -- expect: false	value cannot be bridged out of TarvelLua
print(pcall(function() return loop .. "" == tostring(loop) end))  -- expect: true	true
loop[2] = nil
print(loop)  -- expect: {in a list}
print({{[1] = {k = pairs}}}, 1)  -- expect: {{{k: [function pairs]}}}	1
