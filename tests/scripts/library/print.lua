-- print(...): the values separated by tabs, then a line feed. It returns one nil. tostring(v): objects by address.
t = {}
print(tostring(t) == tostring(t), tostring(t) == tostring({}), #tostring("a\0b"))  -- expect: true	false	3
print(tostring(t):sub(1, 9), tostring(io.stdout):sub(1, 12), tostring(pairs(t)):sub(1, 12))
-- expect: table: 0x	userdata: 0x	iterator: 0x
print(print())
-- expect:
-- expect: nil

-- Tables: lists as {a, b}, all others as {key: value}. Keys that look like integers come first, ascending, then the
-- others bytewise.
print({}, {{}, {{}}, {1, {2}}}, {"text", 1.5, 2.0, true})  -- expect: {}	{{}, {{}}, {1, {2}}}	{text, 1.5, 2, true}
print({10, 20, x = 1}, {1, nil, 3}, {nil, nil}, {1, nil})  -- expect: {1: 10, 2: 20, x: 1}	{1: 1, 3: 3}	{}	{1}
-- Keys that the dense part grew over are no others.
down = {}
for i = 75, 1, -1 do down[i] = 0 end
for i = 75, 4, -1 do down[i] = nil end
print(down)  -- expect: {0, 0, 0}
print({["10"] = "a", [9] = "b", x = "c", [-1] = "d"})  -- expect: {-1: d, 9: b, 10: a, x: c}
print({[true] = 1, [false] = 2, fa = 3, ["é"] = 4, [""] = 5})  -- expect: {: 5, fa: 3, false: 2, true: 1, é: 4}

-- The same table several times is no cycle. A table inside itself cannot be printed, nor can userdata and iterators;
-- then nothing is written at all.
shared = {"s"}
print({shared, shared, {shared, k = shared}})  -- expect: {{s}, {s}, {1: {s}, k: {s}}}
loop = {name = "loop"}
loop.self = loop
print(pcall(print, "never", {{loop}}))  -- expect: false	value cannot be bridged out of TarvelLua
loop.self = nil
print(pcall(print, "never", pairs({})))  -- expect: false	value cannot be bridged out of TarvelLua
print("never", io.stderr)
-- expect error bare: value cannot be bridged out of TarvelLua
