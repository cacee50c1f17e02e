-- An error in the last line keeps the first from running.
print("never")
os.exit(0)
-- expect error 5:14: expected expression
if true then )
