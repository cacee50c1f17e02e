n = (ARGV[0] || 200).to_i

pieces = []
1.upto((n * 2500)) { |i| pieces << "item#{i % 1000}" }
joined = pieces.join(",")

length = 0
last = ""
n.times do
  text = +""
  1.upto(1000) { |i| text << "<#{i % 10}>" }
  length += text.size
  last = text
end
puts "#{joined.size} #{joined[-16..]} #{length} #{last[-9..]}"
