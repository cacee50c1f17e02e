-- Ten binary trees of depth 15, built, counted and dropped: allocation and release of small tables.
local n = tonumber(arg[1] or 10)

local function build(depth)
  if depth == 0 then
    return {false, false}
  end
  return {build(depth - 1), build(depth - 1)}
end

local function countNodes(tree)
  if tree[1] then
    return 1 + countNodes(tree[1]) + countNodes(tree[2])
  end
  return 1
end

local total = 0
for round = 1, n do
  total = total + countNodes(build(15))
end
print(total)
-- expect: 655350
-- small: 1
