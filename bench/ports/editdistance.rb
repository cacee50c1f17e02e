n = (ARGV[0] || 6000).to_i

def distance(a, b)
  previous = (0..b.size).to_a
  1.upto(a.size) do |i|
    current = [i]
    letter = a[i - 1]
    1.upto(b.size) do |j|
      cost = b[j - 1] == letter ? 0 : 1
      current << [previous[j] + 1, current[j - 1] + 1, previous[j - 1] + cost].min
    end
    previous = current
  end
  previous.last
end

words = %w[kitten sitting saturday sunday intention execution apple]
total = 0
1.upto(n) { |i| total += distance(words[i % 7], words[i % 5]) }
puts total
