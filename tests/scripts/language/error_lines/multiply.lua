-- A binary operator reports its own line, not that of its operands.
width = 3
height = nil
area = width
  *  -- expect error: operator '*' expects numbers
  height
