n = (ARGV[0] || 250).to_i

def ackermann(m, k)
  return k + 1 if m == 0
  return ackermann(m - 1, 1) if k == 0

  ackermann(m - 1, ackermann(m, k - 1))
end

total = 0
n.times { total += ackermann(2, 60) }
puts total
