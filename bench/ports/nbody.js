var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function Body(x, y, z, vx, vy, vz, mass) {
  this.x = x;
  this.y = y;
  this.z = z;
  this.vx = vx;
  this.vy = vy;
  this.vz = vz;
  this.mass = mass;
}

function squareRoot(x, guess) {
  var root = guess;
  var change = 1;
  while (change > 0.000000001 || change < -0.000000001) {
    var better = 0.5 * (root + x / root);
    change = better - root;
    root = better;
  }
  return root;
}

function balance(bodies) {
  var px = 0, py = 0, pz = 0;
  for (var i = 0; i < bodies.length; i++) {
    var body = bodies[i];
    px += body.vx * body.mass;
    py += body.vy * body.mass;
    pz += body.vz * body.mass;
  }
  var star = bodies[0];
  star.vx -= px / star.mass;
  star.vy -= py / star.mass;
  star.vz -= pz / star.mass;
}

function advance(bodies, distances, dt) {
  var count = bodies.length;
  var pair = 0;
  for (var i = 0; i < count; i++) {
    var a = bodies[i];
    for (var j = i + 1; j < count; j++) {
      var b = bodies[j];
      var dx = a.x - b.x;
      var dy = a.y - b.y;
      var dz = a.z - b.z;
      var squared = dx * dx + dy * dy + dz * dz;
      var distance = squareRoot(squared, distances[pair]);
      distances[pair] = distance;
      pair++;
      var pull = dt / (squared * distance);
      var pullOnA = b.mass * pull;
      var pullOnB = a.mass * pull;
      a.vx -= dx * pullOnA;
      a.vy -= dy * pullOnA;
      a.vz -= dz * pullOnA;
      b.vx += dx * pullOnB;
      b.vy += dy * pullOnB;
      b.vz += dz * pullOnB;
    }
  }
  for (i = 0; i < count; i++) {
    var body = bodies[i];
    body.x += dt * body.vx;
    body.y += dt * body.vy;
    body.z += dt * body.vz;
  }
}

function energy(bodies) {
  var sum = 0;
  for (var i = 0; i < bodies.length; i++) {
    var a = bodies[i];
    sum += 0.5 * a.mass * (a.vx * a.vx + a.vy * a.vy + a.vz * a.vz);
    for (var j = i + 1; j < bodies.length; j++) {
      var b = bodies[j];
      var dx = a.x - b.x;
      var dy = a.y - b.y;
      var dz = a.z - b.z;
      sum -= a.mass * b.mass / squareRoot(dx * dx + dy * dy + dz * dz, 1);
    }
  }
  return sum;
}

function millionths(x) {
  return Math.floor(x * 1000000 + 0.5);
}

function main(n) {
  var bodies = [
    new Body(0, 0, 0, 0, 0, 0, 39.4784),
    new Body(5.2, 0.1, 0.05, -0.02, 2.75, 0.01, 0.0377),
    new Body(-6.7, 6.8, -0.1, -1.43, -1.42, 0.02, 0.0113),
    new Body(0.4, -19.2, 0.3, 1.43, 0.03, -0.01, 0.0017),
    new Body(-21.3, -21.2, 0.6, 0.8, -0.81, 0.015, 0.002)
  ];
  var distances = [];
  for (var pair = 0; pair < 10; pair++) {
    distances.push(1);
  }

  balance(bodies);
  var before = energy(bodies);
  for (var step = 1; step <= n; step++) {
    advance(bodies, distances, 0.01);
  }
  show(millionths(before) + " " + millionths(energy(bodies)) + " " + millionths(bodies[1].x));
}

main(Number(args[args.length - 1]) || 40000);
