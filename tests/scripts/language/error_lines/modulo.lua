-- Parentheses and other operators around do not change the line.
x = 1 .. (
  (
    7
      % "2"  -- expect error: operator '%' expects numbers
  )
) .. 2
