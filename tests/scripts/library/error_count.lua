-- Argument-count errors have no location, unlike all others.
print("before")  -- expect: before
error(1, 2, 3)
-- expect error bare: error expects between 0 and 2 arguments
