var show = typeof print === "function" ? print : console.log;
var args = typeof process === "object" ? process.argv : typeof scriptArgs === "object" ? scriptArgs
    : this.arguments || [];

function push(heap, event) {
  var i = heap.length;
  heap.push(event);
  while (i > 0) {
    var parent = Math.floor((i - 1) / 2);
    if (heap[parent].time <= event.time) {
      break;
    }
    heap[i] = heap[parent];
    i = parent;
  }
  heap[i] = event;
}

function pop(heap) {
  var event = heap.pop(), size = heap.length;
  if (size === 0) {
    return event;
  }
  var first = heap[0];
  var i = 0, child = 1;
  while (child < size) {
    if (child + 1 < size && heap[child + 1].time < heap[child].time) {
      child++;
    }
    if (event.time <= heap[child].time) {
      break;
    }
    heap[i] = heap[child];
    i = child;
    child = 2 * i + 1;
  }
  heap[i] = event;
  return first;
}

function main(n) {
  var heap = [], seed = 42;
  for (var i = 1; i <= 2000; i++) {
    seed = seed * 16807 % 2147483647;
    push(heap, {time: seed % 100000, id: i});
  }
  var checksum = 0;
  for (i = 1; i <= n; i++) {
    var event = pop(heap);
    checksum = (checksum * 31 + event.time + event.id) % 1000003;
    seed = seed * 16807 % 2147483647;
    push(heap, {time: event.time + seed % 1000, id: event.id});
  }
  show(checksum);
}

main(Number(args[args.length - 1]) || 80000);
