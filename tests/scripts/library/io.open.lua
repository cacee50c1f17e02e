-- args: {tmp}
local path = arg[1] .. "/file"
function content() return io.open(path):read("*a") end

-- What a mode allows on a file that holds "old": does it read, does it write, what is in the file then.
function try(mode)
  io.open(path, "w"):write("old")
  local f, reason = io.open(path, mode)
  if f == nil then return print(mode, reason == "failed to open file: " .. path, content()) end
  local position = f:seek()
  local reads, text = pcall(f.read, f, "*a")
  local writes = pcall(f.write, f, "new")
  f:close()
  print(mode, position, reads, text, writes, content())
end
try(nil)  -- expect: nil	0	true	old	false	old
try("w")  -- expect: w	0	false	failed to read file	true	new
try("a")  -- expect: a	3	false	failed to read file	true	oldnew
try("rw")  -- expect: rw	0	true		true	new
try("ra")  -- expect: ra	0	true	old	true	oldnew
-- The letters count, wherever they stand and how often; nothing else does.
try("")  -- expect: 	0	true	old	false	old
try("w+")  -- expect: w+	0	false	failed to read file	true	new
try("read")  -- expect: read	0	true	old	true	oldnew
-- Appending to a file that is emptied is refused, and the file stays as it was.
try("wa")  -- expect: wa	true	old

-- A failure is no error but nil and a reason. A path with a zero byte names no file.
print(io.open("/dev/null/x", "w"))  -- expect: nil	failed to open file: /dev/null/x
print(io.open(arg[1]))  -- expect: nil	failed to open file: {tmp}
print(io.open(path .. "2\0x", "w") == nil, io.open(path .. "2") == nil)  -- expect: true	true
