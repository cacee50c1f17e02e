-- The run ends at once with the code; what was printed is kept.
-- expect exit: 3
print("before")  -- expect: before
os.exit(3)
print("never")
