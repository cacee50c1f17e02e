n = (ARGV[0] || 400000).to_i

def parse(text)
  text.include?(".") ? Float(text, exception: false) : Integer(text, exception: false)
end

texts = (1..1000).map do |i|
  text = (i * 7919 % 100_000).to_s
  if i % 3 == 0
    text += ".#{i % 4 * 25}"
  elsif i % 10 == 0
    text += "x"
  end
  text
end

sum = refused = letters = 0
1.upto(n) do |i|
  number = parse(texts[i % 1000])
  if number
    sum += number
  else
    refused += 1
  end
  letters += i.to_s.size
end
puts "#{(sum * 100 + 0.5).floor} #{refused} #{letters}"
