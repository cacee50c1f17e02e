-- Five bodies under gravity, 40,000 steps: floating-point fields of records. Square roots are
-- Newton's method in script; each starts from the pair's last distance, so a few rounds suffice.
local n = tonumber(arg[1] or 40000)

local function newBody(x, y, z, vx, vy, vz, mass)
  return {x = x, y = y, z = z, vx = vx, vy = vy, vz = vz, mass = mass}
end

local function squareRoot(x, guess)
  local root = guess
  local change = 1
  while change > 0.000000001 or change < -0.000000001 do
    local better = 0.5 * (root + x / root)
    change = better - root
    root = better
  end
  return root
end

-- Gives the star the momentum that makes the whole system rest.
local function balance(bodies)
  local px, py, pz = 0, 0, 0
  for i = 1, #bodies do
    local body = bodies[i]
    px = px + body.vx * body.mass
    py = py + body.vy * body.mass
    pz = pz + body.vz * body.mass
  end
  local star = bodies[1]
  star.vx = star.vx - px / star.mass
  star.vy = star.vy - py / star.mass
  star.vz = star.vz - pz / star.mass
end

local function advance(bodies, distances, dt)
  local count = #bodies
  local pair = 0
  for i = 1, count do
    local a = bodies[i]
    for j = i + 1, count do
      local b = bodies[j]
      local dx = a.x - b.x
      local dy = a.y - b.y
      local dz = a.z - b.z
      local squared = dx * dx + dy * dy + dz * dz
      pair = pair + 1
      local distance = squareRoot(squared, distances[pair])
      distances[pair] = distance
      local pull = dt / (squared * distance)
      local pullOnA = b.mass * pull
      local pullOnB = a.mass * pull
      a.vx = a.vx - dx * pullOnA
      a.vy = a.vy - dy * pullOnA
      a.vz = a.vz - dz * pullOnA
      b.vx = b.vx + dx * pullOnB
      b.vy = b.vy + dy * pullOnB
      b.vz = b.vz + dz * pullOnB
    end
  end
  for i = 1, count do
    local body = bodies[i]
    body.x = body.x + dt * body.vx
    body.y = body.y + dt * body.vy
    body.z = body.z + dt * body.vz
  end
end

local function energy(bodies)
  local sum = 0
  for i = 1, #bodies do
    local a = bodies[i]
    sum = sum + 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz)
    for j = i + 1, #bodies do
      local b = bodies[j]
      local dx = a.x - b.x
      local dy = a.y - b.y
      local dz = a.z - b.z
      sum = sum - a.mass * b.mass / squareRoot(dx * dx + dy * dy + dz * dz, 1)
    end
  end
  return sum
end

local function millionths(x)
  return math.floor(x * 1000000 + 0.5)
end

local bodies = {
  newBody(0, 0, 0, 0, 0, 0, 39.4784),
  newBody(5.2, 0.1, 0.05, -0.02, 2.75, 0.01, 0.0377),
  newBody(-6.7, 6.8, -0.1, -1.43, -1.42, 0.02, 0.0113),
  newBody(0.4, -19.2, 0.3, 1.43, 0.03, -0.01, 0.0017),
  newBody(-21.3, -21.2, 0.6, 0.8, -0.81, 0.015, 0.002),
}
local distances = {}
for pair = 1, 10 do
  distances[pair] = 1
end

balance(bodies)
local before = energy(bodies)
for step = 1, n do
  advance(bodies, distances, 0.01)
end
print(millionths(before) .. " " .. millionths(energy(bodies)) .. " " .. millionths(bodies[2].x))
-- expect: -170398 -170397 3972047
-- small: 40
