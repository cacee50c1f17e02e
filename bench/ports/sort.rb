n = (ARGV[0] || 200000).to_i

values = []
seed = 42
n.times do
  seed = (seed * 16_807) % 2_147_483_647
  values << seed % 1_000_000
end

values.sort! { |a, b| b <=> a }

checksum = 0
0.step(values.size - 1, 1000) { |i| checksum = (checksum * 31 + values[i]) % 1_000_003 }
puts "#{values.first} #{values.last} #{checksum}"
