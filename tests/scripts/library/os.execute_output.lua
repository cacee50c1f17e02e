-- The script's own output is not flushed before a command: into a pipe it comes after the command's.
print("written first")
os.execute("echo by the command")
print("written last")
-- expect: by the command
-- expect: written first
-- expect: written last
