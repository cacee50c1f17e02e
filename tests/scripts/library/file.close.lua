-- args: {tmp}
local path = arg[1] .. "/file"

function content()
  return io.open(path):read("*a")
end

local f = io.open(path, "w")
f:write("text")
print(#content(), f:close(), content())  -- expect: 0	true	text

-- A closed file stays an object that only refuses to work.
print(type(f), f == f, type(f.close), f.nothing)  -- expect: userdata	true	function	nil
print(pcall(f.close, f))  -- expect: false	file is not open
print(pcall(f.seek, f, "set", 0))  -- expect: false	file is not open

-- The last reference closes a file: a variable's new value, the end of its block, an error.
f = io.open(path, "w")
f:write("assigned")
f = nil
print(content())  -- expect: assigned
if true then
  local inner = io.open(path, "w")
  inner:write("block")
end
print(content())  -- expect: block
function write(text, fail)
  local inner = io.open(path, "w")
  inner:write(text)
  if fail then error("failed") end
end
write("returned")
print(content())  -- expect: returned
print(pcall(write, "thrown", true), content())  -- expect: false	thrown
local t = {file = io.open(path, "w")}
t.file:write("table")
local same = t.file
t.file = nil
print(#content())  -- expect: 0
same = nil
print(content())  -- expect: table

-- A method keeps its own name, works on whatever it is given, and does not keep its file open.
f = io.open(path, "w")
f:write("method")
local close = f.close
print(tostring(close), close, f.close == f.close)  -- expect: function: file:close	[function file:close]	false
f = nil
print(content(), type(close))  -- expect: method	function
f = io.open(path)
print(tostring(f.read), tostring(f.write), tostring(f.seek))  -- expect: function: file:read	function: file:write	function: file:seek

-- No other fields.
print(f.lines, f.flush, f.setvbuf, f[""], f.Read, f["read\0"], f.closed)  -- expect: nil	nil	nil	nil	nil	nil	nil

print(pcall(f.close, "x"))  -- expect: false	file:close expects userdata
