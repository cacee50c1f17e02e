var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function compare(a, b) {
  if (a.age !== b.age) {
    return b.age - a.age;
  } else if (a.name !== b.name) {
    return a.name < b.name ? -1 : 1;
  }
  return a.id - b.id;
}

function main(n) {
  var people = [], seed = 42;
  for (var i = 1; i <= n; i++) {
    seed = seed * 16807 % 2147483647;
    people.push({name: "name" + seed % 500, age: seed % 80, id: i});
  }
  people.sort(compare);

  var checksum = 0;
  for (i = 0; i < n; i++) {
    checksum = (checksum * 31 + people[i].id) % 1000003;
  }
  show(people[0].name + " " + people[n - 1].name + " " + checksum);
}

main(Number(args[args.length - 1]) || 50000);
