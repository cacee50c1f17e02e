-- args: {tmp}
-- Without arguments only tells the position, as an integer; text that still waits to be stored counts.
local f = io.open(arg[1] .. "/file", "rw")
print(f:seek(), f:write("0123456789") == f, f:seek(), f:seek("cur"))  -- expect: 0	true	10	10
print(f:seek("set", 2.9), f:read(2), f:seek("end"), f:read(1), f:seek("end", -3))  -- expect: 2	23	10	nil	7

-- The position follows what a script has read, not what has been buffered.
f:seek("set", 5)
f:write("\nline\n")
print(f:seek("set"), f:read(), f:seek(), f:read("*L") == "line\n", f:seek())  -- expect: 0	01234	6	true	11
-- Beyond the end there are zero bytes once something is written there.
print(f:seek("end", 3), f:read(1), f:write("x"):seek("set", 11), f:read("*a") == "\0\0\0x")  -- expect: 14	nil	11	true
-- Where a file cannot go; it stays where it was.
print(f:seek("set", 6), pcall(f.seek, f, "cur", -7))  -- expect: 6	false	seek failed
print(pcall(f.seek, f, "cur", -9223372036854775807 - 1), f:read(3), f:seek())  -- expect: false	lin	9
f:close()

-- Appending files: the end, once something is written; reading starts at the beginning.
f = io.open(arg[1] .. "/file", "a")
print(f:seek(), f:seek("set", 1), f:write("y"):seek())  -- expect: 15	1	16
f = io.open(arg[1] .. "/file", "ra")
print(f:seek(), f:read(1), f:write("z"):seek(), f:seek("set"), f:read(2))  -- expect: 0	0	17	0	01
