import math
import sys


class Body:
    def __init__(self, x, y, z, vx, vy, vz, mass):
        self.x = x
        self.y = y
        self.z = z
        self.vx = vx
        self.vy = vy
        self.vz = vz
        self.mass = mass


def square_root(x, guess):
    root = guess
    change = 1.0
    while change > 0.000000001 or change < -0.000000001:
        better = 0.5 * (root + x / root)
        change = better - root
        root = better
    return root


def balance(bodies):
    px = py = pz = 0.0
    for body in bodies:
        px += body.vx * body.mass
        py += body.vy * body.mass
        pz += body.vz * body.mass
    star = bodies[0]
    star.vx -= px / star.mass
    star.vy -= py / star.mass
    star.vz -= pz / star.mass


def advance(bodies, distances, dt):
    count = len(bodies)
    pair = 0
    for i in range(count):
        a = bodies[i]
        for j in range(i + 1, count):
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
    for body in bodies:
        body.x += dt * body.vx
        body.y += dt * body.vy
        body.z += dt * body.vz


def energy(bodies):
    sum = 0.0
    for i in range(len(bodies)):
        a = bodies[i]
        sum += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz)
        for j in range(i + 1, len(bodies)):
            b = bodies[j]
            dx = a.x - b.x
            dy = a.y - b.y
            dz = a.z - b.z
            sum -= a.mass * b.mass / square_root(dx * dx + dy * dy + dz * dz, 1.0)
    return sum


def millionths(x):
    return math.floor(x * 1000000 + 0.5)


def main():
    n = int(sys.argv[1]) if len(sys.argv) > 1 else 40000
    bodies = [
        Body(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 39.4784),
        Body(5.2, 0.1, 0.05, -0.02, 2.75, 0.01, 0.0377),
        Body(-6.7, 6.8, -0.1, -1.43, -1.42, 0.02, 0.0113),
        Body(0.4, -19.2, 0.3, 1.43, 0.03, -0.01, 0.0017),
        Body(-21.3, -21.2, 0.6, 0.8, -0.81, 0.015, 0.002),
    ]
    distances = []
    for pair in range(10):
        distances.append(1.0)

    balance(bodies)
    before = energy(bodies)
    for step in range(n):
        advance(bodies, distances, 0.01)
    print(millionths(before), millionths(energy(bodies)), millionths(bodies[1].x))


main()
