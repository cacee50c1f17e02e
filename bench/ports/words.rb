n = (ARGV[0] || 130).to_i

SYLLABLES = %w[ba ke lo mi ru sa ti].freeze

seed = 42
pieces = Array.new(3000) do
  seed = seed * 16_807 % 2_147_483_647
  SYLLABLES[seed % 7] + SYLLABLES[seed % 5] + SYLLABLES[seed % 3]
end
text = "#{pieces.join(' ')}."

distinct = checksum = 0
n.times do
  counts = Hash.new(0)
  text.scan(/[A-Za-z]+/) { |word| counts[word] += 1 }
  list = counts.keys.sort { |a, b| counts[a] == counts[b] ? a <=> b : counts[b] <=> counts[a] }
  distinct += list.size
  checksum = (checksum * 31 + counts[list[0]] + list[1].size) % 1_000_003
end
puts "#{distinct} #{checksum}"
