-- A failing key expression has its own chain and its own line.
t = {}
none = nil
x = t
  [
    none.field  -- expect error: attempt to index a nil value
  ]
