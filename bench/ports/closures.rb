n = (ARGV[0] || 1500000).to_i

def new_counter(step)
  count = 0
  -> { count += step }
end

by_one = new_counter(1)
by_three = new_counter(3)
eighths = 0
n.times do
  eighths += 1 if ((by_one.call + by_three.call) % 8).zero?
end

total = 0
1.upto(n / 6) do |i|
  counter = new_counter(i % 10)
  counter.call
  counter.call
  total += counter.call
end
puts "#{by_one.call} #{by_three.call} #{eighths} #{total}"
