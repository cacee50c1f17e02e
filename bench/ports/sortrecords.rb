n = (ARGV[0] || 50000).to_i

Person = Struct.new(:name, :age, :id)

seed = 42
people = (1..n).map do |i|
  seed = seed * 16_807 % 2_147_483_647
  Person.new("name#{seed % 500}", seed % 80, i)
end
people.sort! do |a, b|
  if a.age != b.age
    b.age <=> a.age
  elsif a.name != b.name
    a.name <=> b.name
  else
    a.id <=> b.id
  end
end

checksum = 0
people.each { |person| checksum = (checksum * 31 + person.id) % 1_000_003 }
puts "#{people.first.name} #{people.last.name} #{checksum}"
