-- os.execute(command): runs a shell command and returns its raw wait status.
print(os.execute("true"), os.execute("false"), os.execute("exit 3"), os.execute("exit 255"))  -- expect: 0	256	768	65280
print(os.execute(""), os.execute("exit 0"), os.execute("no_such_command_here 2>/dev/null") / 256)  -- expect: 0	0	127

-- A command that a signal ends leaves the signal's number in the low bits.
print(os.execute("kill -9 $$"), os.execute("kill -15 $$"))  -- expect: 9	15

-- The whole command line belongs to the shell.
print(os.execute("test 1 -lt 2 && exit 7"), os.execute("a=5; exit $a"), os.execute("true | false"))  -- expect: 1792	1280	256
print(os.execute("exit 4\nexit 5"), os.execute("# nothing"))  -- expect: 1024	0
print(os.execute("true\0 && false"))  -- expect: 0
os.execute("echo to standard error >&2")
-- expect stderr: to standard error

-- It is waited for, and sees what earlier commands left.
print(os.execute("sleep 0.05; test -d ."))  -- expect: 0

-- Only the status comes back.
status, second = os.execute("exit 1")
print(status, second, status == 256)  -- expect: 256	nil	true

print(pcall(os.execute))  -- expect: false	os.execute expects 1 argument
print(pcall(os.execute, "true", "false"))  -- expect: false	os.execute expects 1 argument
print(pcall(os.execute, nil))  -- expect: false	os.execute expects a string argument
print(pcall(os.execute, 5))  -- expect: false	os.execute expects a string argument
print(pcall(os.execute, {"true"}))  -- expect: false	os.execute expects a string argument
print(pcall(os.execute, true))  -- expect: false	os.execute expects a string argument

failed = os.execute("exit 2") ~= 0
os.execute(failed)  -- expect error: os.execute expects a string argument
