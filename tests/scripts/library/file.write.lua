-- args: {tmp}
local path = arg[1] .. "/file"

-- Appending goes to the end wherever the file stands, also behind what another one appends.
local f = io.open(path, "w")
f:write("one ")
f:close()
f = io.open(path, "ra")
local g = io.open(path, "a")
f:write("two ")
f:seek("set")
g:write("three ")
g:close()
f:write("four")
f:close()
f = io.open(path)
print(f:read("*a"))  -- expect: one two three four

-- What cannot be stored: in a file that is only read, and where there is no room, at the latest when the file seeks,
-- reads or closes. A failed write leaves the file open.
print(pcall(f.write, f, "x"))  -- expect: false	failed to write file
local full = io.open("/dev/full", "rw")
print(pcall(full.write, full, string.rep("x", 200000)))  -- expect: false	failed to write file
print(full:write("x") == full, pcall(full.seek, full))  -- expect: true	false	failed to write file
full:write("x")
print(pcall(full.read, full, 1))  -- expect: false	failed to write file
print(full:write("little") == full, pcall(full.close, full))  -- expect: true	false	failed to write file
print(pcall(full.close, full))  -- expect: false	file is not open
