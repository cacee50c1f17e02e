n = (ARGV[0] || 150000).to_i

shapes = [
  ->(i) { i },
  ->(i) { n - i },
  ->(i) { 2 * i < n ? i : n - i },
  ->(_) { 7 },
  ->(i) { i % 1000 == 0 ? i - 500 : i }
]

checksum = 0
shapes.each do |value_at|
  list = (1..n).map { |i| value_at.call(i) }
  list.sort!
  0.step(n - 1, 100) { |i| checksum = (checksum * 31 + list[i]) % 1_000_003 }
end
puts checksum
