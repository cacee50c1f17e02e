-- args: {tmp}
local path = arg[1] .. "/file"

-- A file that holds the text, opened for reading.
function holding(text)
  local f = io.open(path, "w")
  f:write(text)
  f:close()
  return io.open(path)
end

-- Lines: without their line feed by default, nil at the end, also once more.
local f = holding("one\n\ntwo\r\nlast")
print(f:read(), f:read("*l") == "", f:read("l") == "two\r", f:read(), f:read(), f:read())
-- expect: one	true	true	last	nil	nil
f = holding("one\n\nlast")
print(f:read("*L") == "one\n", f:read("L") == "\n", f:read("L"), f:read("L"))  -- expect: true	true	last	nil
f = holding("a\0b\nc\0")
print(#f:read(), #f:read())  -- expect: 3	2

-- The rest, which may be nothing.
f = holding("first\nsecond\n\nthird")
print(f:read(), f:read("*a") == "second\n\nthird", f:read("*a") == "", f:read("a") == "", f:read())
-- expect: first	true	true	true	nil

-- Bytes: as many as there are, nil at the end; no bytes are "" unless at the end.
f = holding("abcdef")
print(f:read(2), f:read(1), f:read(0) == "", f:read(10), f:read(1), f:read(0))
-- expect: ab	c	true	def	nil	nil
f = holding("abcdef")
print(f:read(2.9), f:read(0.5) == "", f:read(0 / 1) == "", f:read(9223372036854775807))
-- expect: ab	true	true	cdef

-- Numbers, as tonumber understands decimal text.
f = holding("12 -7\n\t+3.5 1e3 2.50 .5 5. -.25e1 007 1E-2 4e+0")
local n = f:read("*n")
while n do
  io.write(n, "|")
  n = f:read("n")
end
print()  -- expect: 12|-7|3.5|1000|2.5|0.5|5|-2.5|7|0.01|4|
print(f:read("*n"), f:read("*a") == "")  -- expect: nil	true
f = holding("9223372036854775807 9223372036854775808 3.0")
print(f:read("*n") == 9223372036854775807, f:read("*n"), f:read("*n"))  -- expect: true	9223372036854775807	3
-- What follows a number stays, and where there is none only white space is taken.
f = holding(" 12abc 1e+x 3..4 0x10 -- 5")
print(f:read("*n"), f:read("*n"), f:read(4))  -- expect: 12	nil	abc 
print(f:read("*n"), f:read(4), f:read("*n"), f:read("*n"))  -- expect: 1	e+x 	3	0.4
print(f:read("*n"), f:read("*n"), f:read(3))  -- expect: 0	nil	x10
print(f:read("*n"), f:read("*a"))  -- expect: nil	-- 5
for i, text in ipairs({"+", "-", ".", "-.", "+.e5", "e5", "inf", "nan", "-inf"}) do
  f = holding(text)
  if f:read("*n") ~= nil or f:read("*a") ~= text then print("takes part of", text) end
end
-- A number beyond the floats' range is none, but is taken.
f = holding("1e999 5")
print(f:read("*n"), f:read("*n"))  -- expect: nil	5
-- A number of more digits than any buffer holds.
f = holding(string.rep("0", 100000) .. "42 43")
print(f:read("*n"), f:read("*n"))  -- expect: 42	43

-- Long lines and large amounts, with a line feed at and around every edge of a buffer.
local ok = true
for length = 32766, 32770 do
  f = holding(string.rep("x", length) .. "\n" .. string.rep("y", 32768 - 1) .. "\nz\n")
  local first, second, third = f:read("*L"), f:read(), f:read()
  ok = ok and #first == length + 1 and first:sub(-1) == "\n" and #second == 32767 and third == "z"
end
print(ok)  -- expect: true
local long = string.rep("0123456789", 30000)
f = holding(long .. "\n" .. long .. "\n" .. long)
print(f:read() == long, f:read("*L") == long .. "\n", f:read() == long)  -- expect: true	true	true
f = holding(long .. long)
print(f:read(5), #f:read(299995), f:read(100000) == long:sub(1, 100000), #f:read("*a"))
-- expect: 01234	299995	true	200000

-- Reading and writing may alternate.
f = io.open(path, "rw")
f:write("hello\nworld\n")
print(f:read("*a") == "", f:seek("set"), f:read())  -- expect: true	0	hello
f:write("W")
print(f:read(4), f:seek("set", 4), f:read("*a") == "o\nWorld\n")  -- expect: orld	4	true

-- Special files.
print(io.open("/dev/null"):read(), #io.open("/dev/zero"):read(100000))  -- expect: nil	100000

-- What cannot be read.
f = io.open(path, "w")
print(pcall(f.read, f))  -- expect: false	failed to read file
print(f:write("still good") == f, f:close())  -- expect: true	true

-- Formats.
f = holding("text")
for i, format in ipairs({"", "*", "**l", "x", "*x", "*all", "line", "A", "*N", " *l", "5", "*l\0", -1, -0.5 - 0.5, true, f, {}}) do
  local good, message = pcall(f.read, f, format)
  if good or message ~= "invalid read format" then print(format, good, message) end
end
print(pcall(f.read, f, nil))  -- expect: false	invalid read format
print(f:read(-0.5) == "", f:read())  -- expect: true	text
