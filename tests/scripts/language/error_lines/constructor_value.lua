-- A value inside a nested constructor.
t = {
  a = 1,
  b = {
    2,
    c = {
      [1 + 1] = 3,
      [4] = 5 + nil,  -- expect error: operator '+' expects numbers
    }
  }
}
