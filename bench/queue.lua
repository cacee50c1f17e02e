-- A queue kept in a table: filled at one end, emptied at the other. It visits a binary tree by levels.
local n = tonumber(arg[1] or 1000000)

local queue = {1}
local head, tail = 1, 1
local sum, longest = 0, 0
while head <= tail do
  local node = queue[head]
  queue[head] = nil
  head = head + 1
  sum = (sum * 7 + node) % 1000003
  if 2 * node <= n then
    tail = tail + 1
    queue[tail] = 2 * node
  end
  if 2 * node + 1 <= n then
    tail = tail + 1
    queue[tail] = 2 * node + 1
  end
  if tail - head > longest then
    longest = tail - head
  end
end
print(sum .. " " .. longest)
-- expect: 547621 499999
-- small: 1500
