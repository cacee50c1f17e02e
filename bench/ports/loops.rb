n = (ARGV[0] || 3000).to_i

hits = above = rest = 0
1.upto(n) do |i|
  1.upto(n) do |j|
    if (i * j) % 7 == 3
      hits += 1
    elsif i < j
      above += 1
    else
      rest += 1
    end
  end
end
puts "#{hits} #{above} #{rest}"
