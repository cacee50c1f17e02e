n = (ARGV[0] || 150).to_i

def new_matrix(size, factor)
  (1..size).map { |i| (1..size).map { |j| (i * factor + j * 7) % 19 / 4.0 } }
end

def multiply(a, b, size)
  product = []
  size.times do |i|
    left = a[i]
    row = []
    size.times do |j|
      sum = 0
      size.times { |k| sum += left[k] * b[k][j] }
      row << sum
    end
    product << row
  end
  product
end

product = multiply(new_matrix(n, 3), new_matrix(n, 5), n)
sum = 0
n.times do |i|
  sum += product[i][i] * 16
  sum += product[0][i] * 16
end
puts sum.floor
