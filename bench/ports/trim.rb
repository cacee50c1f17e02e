n = (ARGV[0] || 60000).to_i

texts = ["", "x", "key = value", "a longer line of text", "tab\tinside"]
padded = (1..n).map { |i| " " * (i % 7) + texts[i % 5] + "\t" * (i % 3) + " " * (i % 4) }

once = twice = 0
padded.each do |text|
  once += text[/^\s*(.*?)\s*$/, 1].size
  twice += text.sub(/^\s+/, "").sub(/\s+$/, "").size
end
puts "#{once} #{twice}"
