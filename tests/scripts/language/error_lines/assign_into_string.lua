-- Every target of a statement has the line of the statement.
t = {s = "text"}
t.a,  -- expect error: attempt to assign into a string value
  t.b,
  t.s.field
  = 1, 2, 3
