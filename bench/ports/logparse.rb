n = (ARGV[0] || 40000).to_i

LEVELS = %w[INFO WARN ERROR].freeze
PATHS = ["/", "/index.html", "/api/items", "/login"].freeze
LINE = /^[0-9]+-[0-9]+-([0-9]+) [0-9]+:([0-9]+) \[([A-Za-z]+)\] [A-Za-z]+ (\S+) user=(\w+) took=([0-9]+)ms$/.freeze

seed = 42
lines = (1..n).map do
  seed = seed * 16_807 % 2_147_483_647
  "2024-05-#{10 + seed % 20} 10:#{10 + seed % 50} [#{LEVELS[seed % 3]}] GET #{PATHS[seed % 4]} " \
    "user=u#{seed % 1000} took=#{seed % 900}ms"
end

counts = Hash.new(0)
slowest = nil
longest = total = letters = 0
lines.each do |line|
  day, minute, level, path, user, took = LINE.match(line).captures
  time = took.to_i
  counts[level] += 1
  total += time
  letters += path.size + day.to_i + minute.to_i
  if time > longest
    longest = time
    slowest = user
  end
end
puts "#{counts.values_at(*LEVELS).join(' ')} #{total} #{letters} #{slowest}"
