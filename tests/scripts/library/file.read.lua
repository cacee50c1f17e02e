-- args: {tmp}
-- A file that holds the text, opened for reading.
function holding(text)
  local f = io.open(arg[1] .. "/file", "w")
  f:write(text)
  f:close()
  return io.open(arg[1] .. "/file")
end

-- Lines: without their line feed by default, nil at the end, also once more; the rest, which may be nothing.
local f = holding("one\n\ntwo\r\nlast\0\nx")
print(f:read(), f:read("*L") == "\n", f:read("l") == "two\r", #f:read())  -- expect: one	true	true	5
print(f:read("*a"), f:read("*a") == "", f:read(), f:read("L"))  -- expect: x	true	nil	nil
local long = string.rep("0123456789", 30000)
f = holding(long .. "\n" .. long .. "\n" .. long)
print(f:read() == long, f:read("*L") == long .. "\n", f:read() == long)  -- expect: true	true	true

-- Bytes: as many as there are, nil at the end; no bytes are "" unless at the end.
f = holding("abcdef")
print(io.open("/dev/null"):read(100000))  -- expect: nil
print(f:read(2.9), f:read(0.5) == "", f:read(-0.5) == "", f:read(9223372036854775807), f:read(1), f:read(0))
-- expect: ab	true	true	cdef	nil	nil

-- Numbers, as tonumber understands decimal text.
f = holding("12 -7\n\t+3.5 1e3 2.50 .5 5. -.25e1 007 1E-2 4e+0")
local n = f:read("*n")
while n do
  io.write(n, "|")
  n = f:read("n")
end
print(f:read("*n"), f:read("*a") == "")  -- expect: 12|-7|3.5|1000|2.5|0.5|5|-2.5|7|0.01|4|nil	true
f = holding(string.rep("0", 100000) .. "42 9223372036854775808 1e999 3.0")
print(f:read("*n"), f:read("*n"), f:read("*n"), f:read("*n"))  -- expect: 42	9223372036854775807	nil	3
-- What follows a number stays, and where there is none only white space is taken.
f = holding(" 12abc 1e+x 3..4 0x10 -- 5")
print(f:read("*n"), f:read("*n"), f:read(4))  -- expect: 12	nil	abc 
print(f:read("*n"), f:read(4), f:read("*n"), f:read("*n"))  -- expect: 1	e+x 	3	0.4
print(f:read("*n"), f:read("*n"), f:read(3), f:read("*n"), f:read("*a"))  -- expect: 0	nil	x10	nil	-- 5
for i, text in ipairs({"+", "-.", "+.e5", "e5", "inf", "nan"}) do
  f = holding(text)
  if f:read("*n") ~= nil or f:read("*a") ~= text then print("takes part of", text) end
end

print(pcall(f.read, io.open(arg[1] .. "/file", "a")))  -- expect: false	failed to read file
for i, format in ipairs({"", "*", "**l", "*x", "*all", "line", "A", " *l", "*l\0", -1, true, f, {}}) do
  local good, message = pcall(f.read, f, format)
  if good or message ~= "invalid read format" then print(format, good, message) end
end
