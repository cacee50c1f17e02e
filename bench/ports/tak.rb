n = (ARGV[0] || 40).to_i

def tak(x, y, z)
  return z if y >= x

  tak(tak(x - 1, y, z), tak(y - 1, z, x), tak(z - 1, x, y))
end

total = 0
n.times { total += tak(18, 12, 6) }
puts total
