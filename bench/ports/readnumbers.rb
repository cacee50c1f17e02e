n = (ARGV[0] || 50).to_i

count = sum = 0
n.times do
  File.foreach("bench/data/readings.txt") do |line|
    line.split.each do |word|
      count += 1
      sum += word.to_f
    end
  end
end
puts "#{count} #{(sum * 100 + 0.5).floor}"
