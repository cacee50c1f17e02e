n = (ARGV[0] || 9).to_i

def permute(items, from, size)
  if from == size - 1
    $orders += 1
    $checksum = ($checksum * 3 + items[0] * items[size - 1]) % 1_000_003
    return
  end
  from.upto(size - 1) do |i|
    items[from], items[i] = items[i], items[from]
    permute(items, from + 1, size)
    items[from], items[i] = items[i], items[from]
  end
end

$checksum = $orders = 0
permute((1..n).to_a, 0, n)
puts "#{$orders} #{$checksum}"
