n = (ARGV[0] || 6000).to_i

def write(value, parts)
  case value
  when Integer
    parts << "i#{value}e"
  when String
    parts << "#{value.size}:#{value}"
  else
    parts << "l"
    value.each { |item| write(item, parts) }
    parts << "e"
  end
end

def read(text, position)
  mark = text[position]
  if mark == "i"
    last = text.index("e", position)
    return text[position + 1...last].to_i, last + 1
  elsif mark == "l"
    list = []
    position += 1
    while text[position] != "e"
      item, position = read(text, position)
      list << item
    end
    return list, position + 1
  end
  colon = text.index(":", position)
  length = text[position...colon].to_i
  [text[colon + 1, length], colon + 1 + length]
end

bytes = sum = 0
1.upto(n) do |i|
  record = [i, "name#{i}", ["red", "green", [i * 3, i * 7], ""], [[], "end"]]
  parts = []
  write(record, parts)
  text = parts.join
  copy, = read(text, 0)
  bytes += text.size
  sum += copy[0] + copy[2][2][1] + copy[1].size + copy[3][1].size
end
puts "#{bytes} #{sum}"
