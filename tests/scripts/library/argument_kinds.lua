-- Errors about the kind of an argument have the line of the call.
function repeated(n)
  return string  -- expect error: string.rep expects a numeric argument
    .rep("x",
      n)
end
print(repeated(2))  -- expect: xx
print(repeated("2"))
