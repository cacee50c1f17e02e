-- args: {tmp}
-- Without arguments only tells the position, as an integer; text that still waits to be stored counts.
local f = io.open(arg[1] .. "/file", "rw")
print(f:seek(), f:write("0123456789") == f, f:seek(), f:seek("cur"))  -- expect: 0	true	10	10
print(f:seek("set", 2.9), f:read(2), f:seek("end"), f:read(1), f:seek("end", -3))  -- expect: 2	23	10	nil	7

-- The position follows what a script has read, not what has been buffered.
f:seek("set", 5)
f:write("\nline\n")
print(f:seek("set"), f:read(), f:seek(), f:read("*L") == "line\n", f:seek())  -- expect: 0	01234	6	true	11
-- Where a file cannot go; it stays where it was.
print(f:seek("set", 6), pcall(f.seek, f, "cur", -7))  -- expect: 6	false	seek failed
print(pcall(f.seek, f, "cur", -9223372036854775807 - 1), f:read(3), f:seek())  -- expect: false	lin	9
