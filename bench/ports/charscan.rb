n = (ARGV[0] || 100).to_i

def make_lines
  pieces = ["let ", "x", "(", "12", ")", " + ", "[", "name", "]", " * ", "375", "; "]
  lines = []
  seed = 42
  400.times do
    line = +""
    20.times do
      seed = (seed * 16_807) % 2_147_483_647
      line << pieces[seed % 12]
    end
    lines << line
  end
  lines
end

lines = make_lines
letters = digits = blanks = others = deepest = 0
n.times do
  lines.each do |line|
    depth = 0
    line.size.times do |i|
      c = line[i]
      if c >= "a" && c <= "z"
        letters += 1
      elsif c >= "0" && c <= "9"
        digits += 1
      elsif c == " "
        blanks += 1
      elsif c == "("
        depth += 1
        deepest = depth if depth > deepest
      elsif c == ")"
        depth -= 1
      else
        others += 1
      end
    end
  end
end
puts "#{letters} #{digits} #{blanks} #{others} #{deepest}"
