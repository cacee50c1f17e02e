-- mode: container
-- expect exit: 5
print("before")  -- expect: before
os.exit(256 + 5)
