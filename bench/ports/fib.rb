n = (ARGV[0] || 32).to_i

def fib(n)
  return n if n < 2

  fib(n - 1) + fib(n - 2)
end

puts fib(n)
