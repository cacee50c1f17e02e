def new_counter(step)
  count = 0
  -> { count += step }
end

by_one = new_counter(1)
by_three = new_counter(3)
eighths = 0
1_500_000.times do
  eighths += 1 if ((by_one.call + by_three.call) % 8).zero?
end

total = 0
1.upto(250_000) do |i|
  counter = new_counter(i % 10)
  counter.call
  counter.call
  total += counter.call
end
puts "#{by_one.call} #{by_three.call} #{eighths} #{total}"
