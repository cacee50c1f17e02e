-- args: {tmp}
local path = arg[1] .. "/file"

function content()
  return io.open(path):read("*a")
end

-- Every argument in its printable form, with nothing between them; the result is the file.
local f = io.open(path, "w")
print(f:write("a", 1, 2.5, 3.0, nil, true, false, "b\n"):write(print) == f, f:close())  -- expect: true	true
print(content())
-- expect: a12.53niltruefalseb
-- expect: function: print

-- More than any buffer holds: in one piece, and in many.
local long = string.rep("0123456789", 20000)
f = io.open(path, "w")
f:write("<", long, ">", long, ".")
f:close()
print(content() == "<" .. long .. ">" .. long .. ".")  -- expect: true
for size = 32766, 32770 do
  f = io.open(path, "w")
  f:write(string.rep("a", size), "b", string.rep("c", size), string.rep("d", size))
  f:close()
  if content() ~= string.rep("a", size) .. "b" .. string.rep("c", size) .. string.rep("d", size) then
    print("wrong", size)
  end
end

-- Over what is there, after a seek.
f = io.open(path, "rw")
f:write("0123456789")
f:seek("set", 3)
f:write("abc")
f:seek("end", 2)
f:write("end")
f:close()
print(content() == "012abc6789\0\0end")  -- expect: true

-- Appending goes to the end wherever the file stands, also behind what another one appends.
f = io.open(path, "w")
f:write("one ")
f:close()
f = io.open(path, "ra")
local g = io.open(path, "a")
f:seek("set")
f:write("two ")
f:seek("set")
g:write("three ")
g:close()
f:write("four")
f:close()
print(content())  -- expect: one two three four

-- What cannot be stored: in a file that is only read, and where there is no room, at the latest when the file seeks,
-- reads or closes.
f = io.open(path)
print(pcall(f.write, f, "x"))  -- expect: false	failed to write file
print(f:read("*a"), f:close())  -- expect: one two three four	true
local full = io.open("/dev/full", "w")
print(full:write("x") == full)  -- expect: true
print(pcall(full.seek, full))  -- expect: false	failed to write file
print(pcall(full.close, full))  -- expect: false	failed to write file
full = io.open("/dev/full", "rw")
full:write("x")
print(pcall(full.read, full, 1))  -- expect: false	failed to write file
full = io.open("/dev/full", "w")
print(pcall(full.write, full, long))  -- expect: false	failed to write file
print(pcall(function() for i = 1, 100000 do full:write("12345") end end))  -- expect: false	failed to write file
-- A released file that cannot be stored is lost silently.
full = nil

-- A failed write leaves the file open.
full = io.open("/dev/full", "w")
pcall(full.write, full, long)
print(full:write("little") == full, pcall(full.close, full))  -- expect: true	false	failed to write file

print(pcall(f.write, io.stdout, "x"))  -- expect: false	file:write received the wrong userdata type
