n = (ARGV[0] || 12).to_i

def walk(x, y, goal, heading, turns)
  return 0 if x > goal || y > goal || turns < 0
  return 1 if x == goal && y == goal

  if heading == 1
    walk(x + 1, y, goal, 1, turns) + walk(x, y + 1, goal, 2, turns - 1)
  else
    walk(x + 1, y, goal, 1, turns - 1) + walk(x, y + 1, goal, 2, turns)
  end
end

puts "#{walk(0, 0, n, 1, 7)} #{walk(0, 0, n, 2, 6)}"
