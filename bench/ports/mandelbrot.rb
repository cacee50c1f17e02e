n = (ARGV[0] || 320).to_i

width, height, limit = n, 240, 100
total = inside = 0
height.times do |row|
  cy = row * 2.0 / height - 1
  width.times do |column|
    cx = column * 3.0 / width - 2
    x = y = xx = yy = 0.0
    steps = 0
    while steps < limit && xx + yy <= 4
      y = 2 * x * y + cy
      x = xx - yy + cx
      xx = x * x
      yy = y * y
      steps += 1
    end
    total += steps
    inside += 1 if steps == limit
  end
end
puts "#{total} #{inside}"
