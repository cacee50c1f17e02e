size = 3000
hits = above = rest = 0
1.upto(size) do |i|
  1.upto(size) do |j|
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
