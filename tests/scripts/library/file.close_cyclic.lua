-- cyclic:
-- args: {tmp}
-- A file in a cycle is never closed, so what it buffers never reaches it.
local path = arg[1] .. "/file"
local t = {file = io.open(path, "w")}
t.self = t
t.file:write("lost")
t = nil
print(#io.open(path):read("*a"))  -- expect: 0
