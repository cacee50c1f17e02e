-- Without a code the status is 0.
print("done")  -- expect: done
os.exit()
print("never")
-- expect exit: 0
