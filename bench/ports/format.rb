n = (ARGV[0] || 300000).to_i

names = %w[first second third]
length = 0
1.upto(n) do |i|
  line = format("%d: %s has %d of %d (%s)", i, names[i % 3], i % 77, n, i.even?)
  length += line.size
end
puts length
