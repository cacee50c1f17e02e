n = (ARGV[0] || 300000).to_i

numbers = []
names = []
seed = 42
n.times do
  seed = (seed * 16_807) % 2_147_483_647
  numbers << seed % 1_000_000
end
(n / 3).times do
  seed = (seed * 16_807) % 2_147_483_647
  names << "name#{seed % 100_000}"
end

numbers.sort!
names.sort!

checksum = 0
0.step(numbers.size - 1, 1000) { |i| checksum = (checksum * 31 + numbers[i]) % 1_000_003 }
0.step(names.size - 1, 1000) { |i| checksum = (checksum * 31 + names[i].size) % 1_000_003 }
puts "#{numbers.first} #{numbers.last} #{names.first} #{names.last} #{names[n / 6 - 1]} #{checksum}"
