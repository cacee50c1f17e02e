-- print(...): the values separated by tabs, then a line feed.
print("a", "b", 3)  -- expect: a	b	3
print()
-- expect:
print(true, false, 0.5, 2.0, 1 / 3, -7)  -- expect: true	false	0.5	2	0.333333	-7
print(print, function() end)  -- expect: [function print]	[function <anonymous>]

-- It returns one nil.
print(print("inner"), "outer")
-- expect: inner
-- expect: nil	outer

-- It can be replaced like any global, and works under another name.
write = print
print = function(v) write("replaced", v) end
print("x")  -- expect: replaced	x
print = write
print("restored")  -- expect: restored

-- Userdata and iterators cannot be printed; then nothing is written at all.
print(pcall(print, io.stdout))  -- expect: false	value cannot be bridged out of TarvelLua
print(pcall(print, "never", pairs({})))  -- expect: false	value cannot be bridged out of TarvelLua

print("last")  -- expect: last
print("never", io.stderr)
-- expect error bare: value cannot be bridged out of TarvelLua
