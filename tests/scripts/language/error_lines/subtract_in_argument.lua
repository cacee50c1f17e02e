-- An error in an argument is reported where it arises, not where the call starts.
print(
  "a",
  tostring(
    1 - true  -- expect error: operator '-' expects numbers
  )
)
