-- A queue of events by time: records in a binary heap, each pop followed by a push.
local n = tonumber(arg[1] or 80000)

local function push(heap, event)
  local i = #heap + 1
  heap[i] = event
  while i > 1 do
    local parent = math.floor(i / 2)
    if heap[parent].time <= event.time then
      break
    end
    heap[i] = heap[parent]
    i = parent
  end
  heap[i] = event
end

local function pop(heap)
  local first, size = heap[1], #heap
  local event = heap[size]
  heap[size] = nil
  size = size - 1
  if size == 0 then
    return first
  end
  local i, child = 1, 2
  while child <= size do
    if child < size and heap[child + 1].time < heap[child].time then
      child = child + 1
    end
    if event.time <= heap[child].time then
      break
    end
    heap[i] = heap[child]
    i = child
    child = 2 * i
  end
  heap[i] = event
  return first
end

local heap, seed = {}, 42
for i = 1, 2000 do
  seed = seed * 16807 % 2147483647
  push(heap, {time = seed % 100000, id = i})
end
local checksum = 0
for i = 1, n do
  local event = pop(heap)
  checksum = (checksum * 31 + event.time + event.id) % 1000003
  seed = seed * 16807 % 2147483647
  push(heap, {time = event.time + seed % 1000, id = event.id})
end
print(checksum)
-- expect: 705583
-- small: 100
