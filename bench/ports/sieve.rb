limit = (ARGV[0] || 2000000).to_i
is_prime = [false, false]
2.upto(limit) { |n| is_prime[n] = true }

factor = 2
while factor * factor <= limit
  if is_prime[factor]
    multiple = factor * factor
    while multiple <= limit
      is_prime[multiple] = false
      multiple += factor
    end
  end
  factor += 1
end

count = 0
1.upto(limit) { |n| count += 1 if is_prime[n] }
puts count
