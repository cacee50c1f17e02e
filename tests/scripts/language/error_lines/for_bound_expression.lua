-- An operator among the bounds.
for i = 1,
    10,
    1 / 0 do  -- expect error: division by zero
  print("never")
end
