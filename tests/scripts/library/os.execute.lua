-- os.execute(command): runs a shell command, waits for it and returns its raw wait status.
print(os.execute("kill -9 $$"), os.execute("kill -15 $$"))  -- expect: 9	15
-- A zero byte ends the command line.
print(os.execute("true\0 && false"))  -- expect: 0
os.execute("sleep 0.05; echo to standard error >&2")  -- expect stderr: to standard error
