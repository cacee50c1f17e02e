-- Every argument in its printable form; the result is the stream.
print(io.stdout:write("a", 1, 2.5, nil, true, "\n") == io.stdout)
-- expect: a12.5niltrue
-- expect: true
io.stdout:write("x"):write("y"):write("\n")  -- expect: xy
print(io.stderr:write("first ", 1):write("\n") == io.stderr)
-- expect: true
-- expect stderr: first 1
io.stderr.write(io.stdout, "to standard output\n")  -- expect: to standard output
io.stdout.write(io.stderr, "to standard error\n")  -- expect stderr: to standard error

-- The two are objects of their own.
print(type(io.stdout), io.stdout == io.stdout, io.stdout == io.stderr)  -- expect: userdata	true	false

-- Their methods: only write is theirs, the others are a file's and refuse them.
print(tostring(io.stdout.write), io.stderr.write)  -- expect: function: stream:write	[function stream:write]
print(tostring(io.stdout.read), tostring(io.stdout.seek), tostring(io.stdout.close))  -- expect: function: file:read	function: file:seek	function: file:close
print(pcall(function() io.stderr:seek("set", 0) end))  -- expect: false	file:seek received the wrong userdata type
print(io.stdout.flush, io.stderr.lines, io.stdout.name)  -- expect: nil	nil	nil

-- A stream is no file: a file's method refuses it, and the other way round.
local file = io.open("/dev/null", "rw")
print(pcall(file.write, io.stdout, "x"))  -- expect: false	file:write received the wrong userdata type
print(pcall(io.stdout.write, file, "x"))  -- expect: false	stream:write received the wrong userdata type
