n = (ARGV[0] || 600).to_i

LETTERS = [*"a".."z", "_"].to_h { |byte| [byte, true] }
DIGITS = [*"0".."9"].to_h { |byte| [byte, true] }
BLANKS = { " " => true, "\t" => true, "\n" => true }.freeze
Token = Struct.new(:kind, :text)

def tokenise(text)
  tokens = []
  i = 0
  size = text.size
  while i < size
    byte = text[i]
    from = i
    i += 1
    if BLANKS[byte]
      i += 1 while i < size && BLANKS[text[i]]
    elsif LETTERS[byte]
      i += 1 while i < size && (LETTERS[text[i]] || DIGITS[text[i]])
      tokens << Token.new("name", text[from...i])
    elsif DIGITS[byte]
      i += 1 while i < size && DIGITS[text[i]]
      tokens << Token.new("number", text[from...i])
    else
      tokens << Token.new("sign", byte)
    end
  end
  tokens
end

text = (1..20).map { |i| "let total_#{i} = (count + #{i * 37}) * price[#{i}];\n" }.join
counts = Hash.new(0)
length = 0
n.times do
  tokenise(text).each do |token|
    counts[token.kind] += 1
    length += token.text.size
  end
end
puts "#{counts['name']} #{counts['number']} #{counts['sign']} #{length}"
