n = (ARGV[0] || 80000).to_i

Event = Struct.new(:time, :id)

def push(heap, event)
  i = heap.size
  heap << event
  while i > 0
    parent = (i - 1) / 2
    break if heap[parent].time <= event.time

    heap[i] = heap[parent]
    i = parent
  end
  heap[i] = event
end

def pop(heap)
  event = heap.pop
  size = heap.size
  return event if size == 0

  first = heap[0]
  i = 0
  child = 1
  while child < size
    child += 1 if child + 1 < size && heap[child + 1].time < heap[child].time
    break if event.time <= heap[child].time

    heap[i] = heap[child]
    i = child
    child = 2 * i + 1
  end
  heap[i] = event
  first
end

heap = []
seed = 42
1.upto(2000) do |i|
  seed = seed * 16_807 % 2_147_483_647
  push(heap, Event.new(seed % 100_000, i))
end
checksum = 0
n.times do
  event = pop(heap)
  checksum = (checksum * 31 + event.time + event.id) % 1_000_003
  seed = seed * 16_807 % 2_147_483_647
  push(heap, Event.new(event.time + seed % 1000, event.id))
end
puts checksum
