-- args: {tmp}
function content() return io.open(arg[1] .. "/file"):read("*a") end
function holding(text)
  local f = io.open(arg[1] .. "/file", "w")
  f:write(text)
  return f
end

-- A closed file stays an object that only refuses to work.
local f = holding("text")
print(#content(), f:close(), content())  -- expect: 0	true	text
print(type(f), type(f.close), f.nothing, pcall(f.close, f))  -- expect: userdata	function	nil	false	file is not open
-- The last reference closes a file: a variable's new value, the end of its block, an error.
local same = {file = holding("table")}
f, same.file = same.file, nil
print(#content())  -- expect: 0
f = nil
print(content())  -- expect: table
function fail(text)
  local inner = holding(text)
  error("failed")
end
print(pcall(fail, "thrown"), content())  -- expect: false	thrown
function save(text)
  local inner = io.open(arg[1] .. "/file", "w") or nil
  inner:write(text)
end
save("or")
print(content())  -- expect: or
-- A method keeps its own name, works on whatever it is given, and does not keep its file open.
f = holding("method")
local close = f.close
print(tostring(close), close, f.close == f.close)  -- expect: function: file:close	[function file:close]	true
f = nil
print(content(), type(close))  -- expect: method	function
-- Of two operands that nobody else holds the right one is closed first, and both when they fail.
function adding(text)
  local f = io.open(arg[1] .. "/file", "a")
  f:write(text)
  return f
end
holding(""):close()
same = adding("1") == adding("2")
pcall(function() return adding("3") < adding("4") end)
pcall(function() return adding("5") - adding("6") end)
print(content())  -- expect: 214365
