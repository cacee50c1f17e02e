-- A function fails at its own line wherever it is called.
function make(limit)
  return function(n)
    return n < limit  -- expect error: ordered comparisons require matching numbers or strings
  end
end
check = make(10)
print(check(5))  -- expect: true
check = make("10")
print(
  check(5)
)
