-- A code that is no number does not end the run by itself.
print("before")  -- expect: before
os.exit("0")  -- expect error: os.exit expects a numeric argument
