-- Recursive functions.
function factorial(n)
  if n <= 1 then return 1 end
  return n * factorial(n - 1)
end
print(factorial(5), factorial(20), factorial(21))  -- expect: 120	2432902008176640000	5.10909e+19
function even(n) if n == 0 then return true end return odd(n - 1) end
function odd(n) if n == 0 then return false end return even(n - 1) end
print(even(100), odd(100), even(7))  -- expect: true	false	false

-- Every activation has its own locals, which survive the calls it makes; several results.
function range(from, to)
  if from > to then return end
  return from, range(from + 1, to)
end
print(range(1, 8))  -- expect: 1	2	3	4	5	6	7	8
print("n", range(2, 1))  -- expect: n

-- Ten thousand levels, also through natives, methods and closures.
function depth(n)
  if n == 0 then return 0 end
  return 1 + depth(n - 1)
end
function protected(n)
  if n == 0 then return 0 end
  local ok, below = pcall(protected, n - 1)
  return below + 1
end
object = {}
function object:depth(n)
  if n == 0 then return 0 end
  return 1 + self:depth(n - 1)
end
function shared(n)
  local m = n
  return (function()
    if m == 0 then return 0 end
    return 1 + shared(m - 1)
  end)()
end
print(depth(10000), protected(10000), object:depth(10000), shared(5000))  -- expect: 10000	10000	10000	5000
