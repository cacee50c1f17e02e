n = (ARGV[0] || 30000).to_i

longest = best = 0
1.upto(n) do |start|
  x = start
  steps = 0
  while x != 1
    if x.even?
      x /= 2
    else
      x = 3 * x + 1
    end
    steps += 1
  end
  if steps > longest
    longest = steps
    best = start
  end
end
puts "#{best} #{longest}"
