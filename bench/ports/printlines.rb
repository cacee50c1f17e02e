n = (ARGV[0] || 200000).to_i

1.upto(n) do |i|
  puts "line #{i}\t#{i * 3}\tend"
end
