n = (ARGV[0] || 1000000).to_i

queue = [1]
sum = longest = 0
until queue.empty?
  node = queue.shift
  sum = (sum * 7 + node) % 1_000_003
  queue.push(2 * node) if 2 * node <= n
  queue.push(2 * node + 1) if 2 * node + 1 <= n
  longest = queue.size - 1 if queue.size - 1 > longest
end
puts "#{sum} #{longest}"
