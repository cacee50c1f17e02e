n = (ARGV[0] || 60000).to_i

seed = 42
count = letters = 0
1.upto(n) do |i|
  seed = seed * 16_807 % 2_147_483_647
  fields = "#{i},name#{seed % 100},#{seed},true,last one".scan(/[^,]+/)
  words = "  the #{seed % 100} words of\ta line ".scan(/\S+/)
  count += fields.size + words.size
  letters += fields[1].size + words[1].size
end
puts "#{count} #{letters}"
