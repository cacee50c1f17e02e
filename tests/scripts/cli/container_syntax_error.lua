-- mode: container
-- A script with a syntax error is not compiled: nothing of it runs and no container is written.
print("never")
print("never" .. )  -- expect error 4:18: expected expression
