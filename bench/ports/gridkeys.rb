n = (ARGV[0] || 150).to_i

cells = {}
seed = 42
1.upto(n * n) do |i|
  seed = seed * 16_807 % 2_147_483_647
  cells["#{seed % n},#{seed / n % n}"] = i % 9 + 1
end

sum = missing = 0
10.times do
  n.times do |y|
    n.times do |x|
      cell = cells["#{x},#{y}"]
      if cell
        sum += cell
      else
        missing += 1
      end
    end
  end
end
puts "#{sum} #{missing}"
