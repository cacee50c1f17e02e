-- Recursive functions.
function factorial(n)
  if n <= 1 then return 1 end
  return n * factorial(n - 1)
end
print(factorial(5), factorial(20), factorial(21))  -- expect: 120	2432902008176640000	5.10909e+19
function fib(n)
  if n < 2 then return n end
  return fib(n - 1) + fib(n - 2)
end
print(fib(0), fib(1), fib(10), fib(20))  -- expect: 0	1	55	6765
function even(n) if n == 0 then return true end return odd(n - 1) end
function odd(n) if n == 0 then return false end return even(n - 1) end
print(even(100), odd(100), even(7))  -- expect: true	false	false
function ackermann(m, n)
  if m == 0 then return n + 1 end
  if n == 0 then return ackermann(m - 1, 1) end
  return ackermann(m - 1, ackermann(m, n - 1))
end
print(ackermann(2, 3), ackermann(1, 5))  -- expect: 9	7
function gcd(a, b)
  if b == 0 then return a end
  return gcd(b, a % b)
end
print(gcd(48, 18), gcd(17, 5), gcd(1000000007, 998244353))  -- expect: 6	1	1

moves = 0
function hanoi(n, from, to, via)
  if n == 0 then return end
  hanoi(n - 1, from, via, to)
  moves = moves + 1
  hanoi(n - 1, via, to, from)
end
hanoi(6, "a", "b", "c")
print(moves)  -- expect: 63

-- Several results at every level.
function range(from, to)
  if from > to then return end
  return from, range(from + 1, to)
end
print(range(1, 8))  -- expect: 1	2	3	4	5	6	7	8
print("n", range(2, 1))  -- expect: n
function reverse(n)
  if n == 0 then return "end" end
  return n, reverse(n - 1)
end
print(reverse(5))  -- expect: 5	4	3	2	1	end

-- Locals of every activation survive the calls it makes.
function permutations(list, size, report)
  if size == 1 then
    report(table.concat(list, ""))
    return 1
  end
  local count = 0
  for i = 1, size do
    local other = 1
    count = count + permutations(list, size - 1, report)
    if size % 2 == 0 then other = i end
    list[other], list[size] = list[size], list[other]
  end
  return count
end
print(permutations({"a", "b", "c"}, 3, print))
-- expect: abc
-- expect: bac
-- expect: cab
-- expect: acb
-- expect: bca
-- expect: cba
-- expect: 6

-- Trees.
function build(depth)
  if depth == 0 then return {} end
  return {left = build(depth - 1), right = build(depth - 1)}
end
function count(node)
  if not node.left then return 1 end
  return 1 + count(node.left) + count(node.right)
end
print(count(build(0)), count(build(3)), count(build(10)))  -- expect: 1	15	2047

-- A function handed to itself.
print((function(f, n) return f(f, n) end)(function(f, n)
  if n == 0 then return "bottom" end
  return f(f, n - 1)
end, 50))  -- expect: bottom

-- Ten thousand levels, also through natives, methods and closures.
function depth(n)
  if n == 0 then return 0 end
  return 1 + depth(n - 1)
end
print(depth(10000))  -- expect: 10000
function protected(n)
  if n == 0 then return 0 end
  local ok, below = pcall(protected, n - 1)
  return below + 1
end
print(protected(10000))  -- expect: 10000
object = {}
function object:depth(n)
  if n == 0 then return 0 end
  return 1 + self:depth(n - 1)
end
print(object:depth(10000))  -- expect: 10000
function shared(n)
  local m = n
  return (function()
    if m == 0 then return 0 end
    return 1 + shared(m - 1)
  end)()
end
print(shared(5000))  -- expect: 5000
