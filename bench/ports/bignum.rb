n = (ARGV[0] || 1500).to_i

digits = [1]
2.upto(n) do |factor|
  carry = 0
  digits.size.times do |i|
    product = digits[i] * factor + carry
    digits[i] = product % 10_000
    carry = product / 10_000
  end
  while carry > 0
    digits << carry % 10_000
    carry /= 10_000
  end
end
sum = checksum = 0
digits.each do |digit|
  sum += digit
  checksum = (checksum * 10_000 + digit) % 1_000_003
end
puts "#{digits.size} #{sum} #{checksum}"
