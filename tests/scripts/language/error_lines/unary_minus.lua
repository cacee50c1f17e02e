-- A unary operator reports its own line.
x = "text"
y = 1 +
  2 *
  -  -- expect error: unary '-' expects a number
  x
