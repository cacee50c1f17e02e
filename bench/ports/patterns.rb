n = (ARGV[0] || 20000).to_i

def make_lines(n)
  levels = %w[info debug warning error]
  parts = %w[disk network session cache worker]
  lines = []
  seed = 42
  1.upto(n) do |i|
    seed = (seed * 16_807) % 2_147_483_647
    lines << "2024-05-#{10 + i % 20} 10:#{10 + seed % 50} #{levels[seed % 4]} #{parts[seed % 5]}: " \
             "request id=#{seed} took=#{seed % 900} ms, #{i % 3} retries"
  end
  lines
end

errors = days = times = fields = words = masked = 0
make_lines(n).each do |line|
  errors += 1 if line.include?(" error ")
  _year, _month, day = line.match(/^([0-9]+)-([0-9]+)-([0-9]+)/).captures
  days += day.to_i
  times += line[/took=([0-9]+)/, 1].to_i
  line.scan(/([A-Za-z]+)=([A-Za-z0-9_]+)/) { |key, value| fields += key.size + value.size }
  line.scan(/[A-Za-z]+/) { words += 1 }
  masked += line.gsub(/[0-9]+/, "#").size
end
puts "#{errors} #{days} #{times} #{fields} #{words} #{masked}"
