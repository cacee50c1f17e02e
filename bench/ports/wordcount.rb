n = (ARGV[0] || 900000).to_i

counts = {}
seed = 42
n.times do
  seed = (seed * 3877 + 29_573) % 139_968
  word = "word#{seed % 5000}"
  count = counts[word]
  counts[word] = count ? count + 1 : 1
end

distinct = most = letters = 0
counts.each do |word, count|
  distinct += 1
  letters += word.size * count
  most = count if count > most
end
puts "#{distinct} #{most} #{letters}"
