n = (ARGV[0] || 20).to_i

SIZE = 9

def clear_flags(count)
  flags = []
  (count + 1).times { flags << false }
  flags
end

def place(row, columns, rising, falling)
  return 1 if row > SIZE

  found = 0
  1.upto(SIZE) do |column|
    up = row + column
    down = row - column + SIZE
    next if columns[column] || rising[up] || falling[down]

    columns[column] = rising[up] = falling[down] = true
    found += place(row + 1, columns, rising, falling)
    columns[column] = rising[up] = falling[down] = false
  end
  found
end

total = 0
n.times do
  total += place(1, clear_flags(SIZE), clear_flags(2 * SIZE), clear_flags(2 * SIZE))
end
puts total
