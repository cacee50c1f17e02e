n = (ARGV[0] || 120000).to_i

length = 0
1.upto(n) { |i| length += ["id", i, "name", i % 10, "end"].join(";").size }
list = (1..1000).map { |i| "item#{i}" }
(n / 50).times { length += list.join(", ").size }
puts length
