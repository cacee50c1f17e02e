-- Every argument in its printable form, with nothing between and nothing behind them.
io.write("a", 1, 2.5, 3.0, nil, true, false, "\n")
-- expect: a12.53niltruefalse
io.write(io.write, "\n")  -- expect: function: write
io.write("")
io.write(("x"):rep(3), 0.1 + 0.2, "\n")  -- expect: xxx0.3

-- The result is io.stdout, so that calls can be chained.
print(io.write("chain ") == io.stdout)  -- expect: chain true
io.write("a"):write("b"):write("c\n")  -- expect: abc

-- As the interpreter made it, whatever became of the field.
local out, err = io.stdout, io.stderr
io.stdout = err
print(io.write("") == out, io.write("") == io.stdout)  -- expect: true	false
io.stdout = nil
print(io.write("") == out, io.stdout)  -- expect: true	nil
out = nil
print(type(io.write("still ")))  -- expect: still userdata
print(io.write("") == io.write(""))  -- expect: true
local write = io.write
io = nil
write("here"):write("\n")  -- expect: here
