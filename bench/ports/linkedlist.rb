n = (ARGV[0] || 100).to_i

Node = Struct.new(:value, :rest)

sum = 0
n.times do
  first = nil
  1.upto(5000) { |i| first = Node.new(i, first) }
  reversed = nil
  while first
    rest = first.rest
    first.rest = reversed
    reversed = first
    first = rest
  end
  node = reversed
  place = 0
  while node
    place += 1
    sum = (sum + node.value * place) % 1_000_003
    node = node.rest
  end
end
puts sum
