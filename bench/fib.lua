-- Recursive Fibonacci: calls, a comparison and small integer arithmetic.
local n = tonumber(arg[1] or 32)

local function fib(n)
  if n < 2 then
    return n
  end
  return fib(n - 1) + fib(n - 2)
end

print(fib(n))
-- expect: 2178309
-- small: 18
