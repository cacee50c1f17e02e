n = (ARGV[0] || 150).to_i

def element(i, j)
  1.0 / ((i + j) * (i + j + 1) / 2 + i + 1)
end

def multiply(vector, size)
  result = []
  size.times do |i|
    sum = 0.0
    size.times { |j| sum += element(i, j) * vector[j] }
    result << sum
  end
  result
end

vector = Array.new(n, 1.0)
40.times do
  vector = multiply(vector, n)
  largest = vector[0]
  vector.map! { |value| value / largest }
end
puts (vector.sum * 100_000_000 + 0.5).floor
