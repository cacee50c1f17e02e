-- args: {tmp}
local path = arg[1] .. "/file"
local f = io.open(path, "rw")

-- Without arguments only tells the position, as an integer; text that still waits to be stored counts.
print(f:seek(), f:write("0123456789") == f, f:seek(), f:seek("cur"), f:seek("cur", 0))  -- expect: 0	true	10	10	10

-- From the start, from here, from the end.
print(f:seek("set", 4), f:read(2), f:seek())  -- expect: 4	45	6
print(f:seek("cur", -5), f:read(1))  -- expect: 1	1
print(f:seek("end"), f:read(1))  -- expect: 10	nil
print(f:seek("end", -3), f:read("*a"))  -- expect: 7	789
print(f:seek("set", 2.9), f:read(1), f:seek("cur", -0.5))  -- expect: 2	2	3

-- The position follows what a script has read, not what has been buffered.
f:seek("set")
f:read("*n")
print(f:seek())  -- expect: 10
f:seek("set", 5)
f:write("\nline\n")
print(f:seek("set"), f:read(), f:seek(), f:read("*L") == "line\n", f:seek())  -- expect: 0	01234	6	true	11

-- Beyond the end there are zero bytes once something is written there.
print(f:seek("end", 3), f:read(1), f:seek())  -- expect: 14	nil	14
f:write("x")
print(f:seek("set", 11), f:read("*a") == "\0\0\0x")  -- expect: 11	true

-- Where a file cannot go; it stays where it was.
f:seek("set", 6)
print(pcall(f.seek, f, "set", -1))  -- expect: false	seek failed
print(pcall(f.seek, f, "cur", -7))  -- expect: false	seek failed
print(pcall(f.seek, f, "end", -16))  -- expect: false	seek failed
print(f:read(1), f:seek())  -- expect: l	7
print(pcall(f.seek, f, "cur", -9223372036854775807 - 1))  -- expect: false	seek failed
print(f:read(3), f:seek())  -- expect: ine	10

-- Names.
for i, whence in ipairs({"", "SET", "*set", "begin", "current", "set ", "nowhere"}) do
  local good, message = pcall(f.seek, f, whence)
  if good or message ~= "invalid seek mode" then print(whence, good, message) end
end

print(f:close(), pcall(f.seek, f))  -- expect: true	false	file is not open

-- Appending files: the end, once something is written; reading starts at the beginning.
f = io.open(path, "a")
print(f:seek(), f:seek("set", 1), f:write("y"):seek())  -- expect: 15	1	16
f = io.open(path, "ra")
print(f:seek(), f:read(1), f:write("z"):seek(), f:seek("set"), f:read(2))  -- expect: 0	0	17	0	01

-- Arguments.
print(pcall(f.seek, "set"))  -- expect: false	file:seek expects userdata
print(pcall(f.seek, io.stdout))  -- expect: false	file:seek received the wrong userdata type
