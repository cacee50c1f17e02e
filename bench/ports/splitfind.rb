n = (ARGV[0] || 60000).to_i

def split(text, separator)
  fields = []
  from = 0
  while (first = text.index(separator, from))
    fields << text[from...first]
    from = first + separator.size
  end
  fields << text[from..]
end

seed = 42
count = letters = 0
1.upto(n) do |i|
  seed = seed * 16_807 % 2_147_483_647
  fields = split("#{i}, name#{seed % 100}, #{seed}, , true, last one", ", ")
  count += fields.size
  letters += fields[1].size + fields[5].size
end
puts "#{count} #{letters}"
