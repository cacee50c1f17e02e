-- How print renders tables: lists as {a, b}, all others as {key: value}.
print({})  -- expect: {}
print({1, 2, 3})  -- expect: {1, 2, 3}
print({"text", 1.5, 2.0, true, false})  -- expect: {text, 1.5, 2, true, false}
print({{}, {{}}, {1, {2}}})  -- expect: {{}, {{}}, {1, {2}}}
print({print, function() end})  -- expect: {[function print], [function <anonymous>]}

-- Any other key makes it an object; keys that look like integers come first, ascending, then
-- the others bytewise.
print({10, 20, x = 1})  -- expect: {1: 10, 2: 20, x: 1}
print({[10] = "ten", [9] = "nine", [-1] = "minus", [0] = "zero", [100] = "hundred"})
-- expect: {-1: minus, 0: zero, 9: nine, 10: ten, 100: hundred}
print({["10"] = "a", [9] = "b", x = "c", ["2"] = "d"})  -- expect: {2: d, 9: b, 10: a, x: c}
print({[true] = 1, [false] = 2, fa = 3, zz = 4})  -- expect: {fa: 3, false: 2, true: 1, zz: 4}
print({["key with spaces"] = 1, ["é"] = 2, z = 3, [""] = 4})  -- expect: {: 4, key with spaces: 1, z: 3, é: 2}

-- Holes make an object of the entries that are there.
print({1, nil, 3})  -- expect: {1: 1, 3: 3}
print({nil, nil}, {1, nil})  -- expect: {}	{1}

-- A far key makes an object until the list has grown over it.
t = {}
t[66] = "far"
print(t)  -- expect: {66: far}
for i = 1, 65 do t[i] = 0 end
t[67] = "end"
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
loop.self = nil
print({{[1] = {k = pairs}}}, 1)  -- expect: {{{k: [function pairs]}}}	1
