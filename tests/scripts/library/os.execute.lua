-- os.execute(command): runs a shell command and returns its raw wait status.
print(os.execute("true"), os.execute("false"), os.execute("exit 3"), os.execute("exit 255"))  -- expect: 0	256	768	65280
print(os.execute(""), os.execute("exit 0"), os.execute("no_such_command_here 2>/dev/null") / 256)  -- expect: 0	0	127

-- A command that a signal ends leaves the signal's number in the low bits.
print(os.execute("kill -9 $$"), os.execute("kill -15 $$"))  -- expect: 9	15

-- The whole command line belongs to the shell.
print(os.execute("true\0 && false"))  -- expect: 0
os.execute("echo to standard error >&2")
-- expect stderr: to standard error

-- It is waited for, and sees what earlier commands left.
print(os.execute("sleep 0.05; test -d ."))  -- expect: 0

print(pcall(os.execute))  -- expect: false	os.execute expects 1 argument
print(pcall(os.execute, nil))  -- expect: false	os.execute expects a string argument

failed = os.execute("exit 2") ~= 0
os.execute(failed)  -- expect error: os.execute expects a string argument
