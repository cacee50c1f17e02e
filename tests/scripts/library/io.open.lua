-- args: {tmp}
local folder = arg[1]
local path = folder .. "/file"

function store(text)
  local f = io.open(path, "w")
  f:write(text)
  f:close()
end

function content()
  local f = io.open(path)
  local text = f:read("*a")
  f:close()
  return text
end

-- What a mode allows on a file that holds "old": does it read, does it write, what is in the file then.
function try(mode)
  store("old")
  local f, reason = io.open(path, mode)
  if f == nil then
    print(mode, reason == "failed to open file: " .. path, content())
    return
  end
  local position = f:seek()
  local reads, text = pcall(f.read, f, "*a")
  local writes = pcall(f.write, f, "new")
  f:close()
  print(mode, position, reads, text, writes, content())
end

try("r")  -- expect: r	0	true	old	false	old
try("w")  -- expect: w	0	false	failed to read file	true	new
try("a")  -- expect: a	3	false	failed to read file	true	oldnew
try("rw")  -- expect: rw	0	true		true	new
try("ra")  -- expect: ra	0	true	old	true	oldnew
-- The letters count, wherever they stand and how often; nothing else does.
try("w+")  -- expect: w+	0	false	failed to read file	true	new
try("")  -- expect: 	0	true	old	false	old
try("read")  -- expect: read	0	true	old	true	oldnew
-- Appending to a file that is emptied is refused, and the file stays as it was.
try("wa")  -- expect: wa	true	old

-- Without a mode, and with nil, a file is read.
print(io.open(path):read("*a"), io.open(path, nil):read("*a"))  -- expect: old	old

-- The result is one userdata; every open makes a new one.
local f, g, nothing = io.open(path), io.open(path)
print(type(f), type(g), nothing, f == g, f == f)  -- expect: userdata	userdata	nil	false	true

-- A failure is no error but nil and a reason.
print(io.open("missing/file"))  -- expect: nil	failed to open file: missing/file
print(io.open("/dev/null/x", "w"))  -- expect: nil	failed to open file: /dev/null/x
-- A directory is no file.
local text, reason = io.open(folder)
print(text, reason == "failed to open file: " .. folder)  -- expect: nil	true
-- A path with a zero byte names no file, rather than the one that its beginning names.
local none, reason = io.open(path .. "\0.txt")
print(none, reason == "failed to open file: " .. path .. "\0.txt")  -- expect: nil	true
print(io.open(folder .. "/new\0x", "w") == nil, io.open(folder .. "/new") == nil)  -- expect: true	true

-- Reading makes no file, writing and appending do.
print(io.open(folder .. "/none", "r"))  -- expect: nil	failed to open file: {tmp}/none
io.open(folder .. "/appended", "a")
print(#io.open(folder .. "/appended"):read("*a"))  -- expect: 0

