-- print(...): the values separated by tabs, then a line feed.
print("a", "b", 3)  -- expect: a	b	3
print()
-- expect:
print("")
-- expect:
print(nil)  -- expect: nil
print(nil, nil)  -- expect: nil	nil
print(1, nil, "x")  -- expect: 1	nil	x
print(true, false, 0.5, 2.0, 1 / 3, -7)  -- expect: true	false	0.5	2	0.333333	-7
print("tab\there", "line\nfeed")
-- expect: tab	here	line
-- expect: feed
print("é", "日本")  -- expect: é	日本
print(print, function() end)  -- expect: [function print]	[function <anonymous>]

-- It returns one nil.
print(print("inner"), "outer")
-- expect: inner
-- expect: nil	outer
print(pcall(print))
-- expect:
-- expect: true	nil
a, b = print("assigned"), "second"
-- expect: assigned
print(a, b)  -- expect: nil	second

-- Any number of arguments.
print(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20)
-- expect: 1	2	3	4	5	6	7	8	9	10	11	12	13	14	15	16	17	18	19	20
function three() return 1, 2, 3 end
print(three(), three())  -- expect: 1	1	2	3

-- It can be replaced like any global, and works under another name.
write = print
print = function(v) write("replaced", v) end
print("x")  -- expect: replaced	x
print = write
print("restored")  -- expect: restored

-- Userdata and iterators cannot be printed; then nothing is written at all.
print(pcall(print, io.stdout))  -- expect: false	value cannot be bridged out of TarvelLua
print(pcall(print, "never", pairs({})))  -- expect: false	value cannot be bridged out of TarvelLua
print(pcall(print, {"never", {ipairs({})}}))  -- expect: false	value cannot be bridged out of TarvelLua
print(tostring(io.stdout) == tostring(io.stdout))  -- expect: true

print("last")  -- expect: last
print("never", io.stderr)
-- expect error bare: value cannot be bridged out of TarvelLua
