-- An unusable key in an assignment is reported at the start of the statement.
t = {}
t.ok = 1
t  -- expect error: table index must be a number, string, or boolean
  [
    nil
  ]
  = 2
