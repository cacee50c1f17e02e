n = (ARGV[0] || 300).to_i

lines = bytes = longest = 0
n.times do
  File.foreach("bench/data/readings.txt", chomp: true) do |line|
    lines += 1
    bytes += line.bytesize
    longest = line.bytesize if line.bytesize > longest
  end
end
puts "#{lines} #{bytes} #{longest}"
