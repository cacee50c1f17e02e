-- io.write(...) and the write method of the streams: every argument in its printable form, with nothing between them.
io.write("a", 1, 2.5, 3.0, nil, true, io.write, "\n")
-- expect: a12.53niltruefunction: write
io.stderr:write("first ", 1):write("\n")  -- expect stderr: first 1
io.stderr.write(io.stdout, "to standard output\n")  -- expect: to standard output

-- Only write is a stream's own method; the others are a file's and refuse it, and the other way round.
print(io.stderr.write, tostring(io.stdout.read))  -- expect: [function stream:write]	function: file:read
print(io.stdout.flush, io.stdout == io.stderr, type(io.stdout))  -- expect: nil	false	userdata
local file = io.open("/dev/null", "rw")
print(pcall(file.write, io.stdout, "x"))  -- expect: false	file:write received the wrong userdata type
print(pcall(io.stdout.write, file, "x"))  -- expect: false	stream:write received the wrong userdata type

-- The result of io.write is io.stdout as the interpreter made it, whatever became of the field and of `io`.
local out, write = io.stdout, io.write
io.stdout = nil
print(io.write("chain ") == out, io.stdout)  -- expect: chain true	nil
io, out = nil, nil
write("here"):write("\n")  -- expect: here
