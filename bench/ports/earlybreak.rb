n = (ARGV[0] || 40000).to_i

def empty?(table)
  table.each_key { return false }
  true
end

def first_word(line)
  line.scan(/[A-Za-z]+/) { |word| return word }
  ""
end

def position(list, wanted)
  list.each_with_index { |item, i| return i + 1 if item == wanted }
  0
end

line = +"12: "
fields = {}
items = []
1.upto(60) do |i|
  line << "word#{i} "
  fields["field#{i}"] = i
  items << i * 3 % 61
end

empty = letters = positions = 0
1.upto(n) do |i|
  empty += 1 if empty?(fields)
  empty += 1 if empty?({})
  letters += first_word(line).size
  positions += position(items, i % 10 + 1)
end
puts "#{empty} #{letters} #{positions}"
