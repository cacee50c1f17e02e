n = (ARGV[0] || 40000).to_i

class Body
  attr_accessor :x, :y, :z, :vx, :vy, :vz, :mass

  def initialize(x, y, z, vx, vy, vz, mass)
    @x = x
    @y = y
    @z = z
    @vx = vx
    @vy = vy
    @vz = vz
    @mass = mass
  end
end

def square_root(x, guess)
  root = guess
  change = 1.0
  while change > 0.000000001 || change < -0.000000001
    better = 0.5 * (root + x / root)
    change = better - root
    root = better
  end
  root
end

def balance(bodies)
  px = py = pz = 0.0
  bodies.each do |body|
    px += body.vx * body.mass
    py += body.vy * body.mass
    pz += body.vz * body.mass
  end
  star = bodies[0]
  star.vx -= px / star.mass
  star.vy -= py / star.mass
  star.vz -= pz / star.mass
end

def advance(bodies, distances, dt)
  count = bodies.size
  pair = 0
  i = 0
  while i < count
    a = bodies[i]
    j = i + 1
    while j < count
      b = bodies[j]
      dx = a.x - b.x
      dy = a.y - b.y
      dz = a.z - b.z
      squared = dx * dx + dy * dy + dz * dz
      distance = square_root(squared, distances[pair])
      distances[pair] = distance
      pair += 1
      pull = dt / (squared * distance)
      pull_on_a = b.mass * pull
      pull_on_b = a.mass * pull
      a.vx -= dx * pull_on_a
      a.vy -= dy * pull_on_a
      a.vz -= dz * pull_on_a
      b.vx += dx * pull_on_b
      b.vy += dy * pull_on_b
      b.vz += dz * pull_on_b
      j += 1
    end
    i += 1
  end
  bodies.each do |body|
    body.x += dt * body.vx
    body.y += dt * body.vy
    body.z += dt * body.vz
  end
end

def energy(bodies)
  sum = 0.0
  bodies.each_with_index do |a, i|
    sum += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz)
    (i + 1).upto(bodies.size - 1) do |j|
      b = bodies[j]
      dx = a.x - b.x
      dy = a.y - b.y
      dz = a.z - b.z
      sum -= a.mass * b.mass / square_root(dx * dx + dy * dy + dz * dz, 1.0)
    end
  end
  sum
end

def millionths(x)
  (x * 1_000_000 + 0.5).floor
end

bodies = [
  Body.new(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 39.4784),
  Body.new(5.2, 0.1, 0.05, -0.02, 2.75, 0.01, 0.0377),
  Body.new(-6.7, 6.8, -0.1, -1.43, -1.42, 0.02, 0.0113),
  Body.new(0.4, -19.2, 0.3, 1.43, 0.03, -0.01, 0.0017),
  Body.new(-21.3, -21.2, 0.6, 0.8, -0.81, 0.015, 0.002)
]
distances = []
10.times { distances << 1.0 }

balance(bodies)
before = energy(bodies)
n.times { advance(bodies, distances, 0.01) }
puts "#{millionths(before)} #{millionths(energy(bodies))} #{millionths(bodies[1].x)}"
