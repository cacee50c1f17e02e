-- Without a message the text is "error"; the line is the one where the call starts.
print("before")  -- expect: before
x = "x" ..
  error  -- expect error: error
  (
  )
