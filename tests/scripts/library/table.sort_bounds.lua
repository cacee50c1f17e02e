-- Whatever the elements and the order, sorting ends after a bounded number of comparisons, 6 for each element and
-- halving, and no element is lost. Where the order is one, the elements are in it.
function check(name, n, element, before)
  local t, seen, count, halvings, size = {}, {}, 0, 0, 1
  while size <= n do size, halvings = size * 2, halvings + 1 end
  for i = 1, n do t[i] = {value = element(i, n), index = i} end
  table.sort(t, function(a, b)
    count = count + 1
    return not before and a.value < b.value or before and before(a, b)
  end)
  for i = 1, n do
    if seen[t[i].index] then print(name, n, "doubled", t[i].index) end
    seen[t[i].index] = true
    if i > 1 and not before and t[i - 1].value > t[i].value then print(name, n, "wrong at", i) end
  end
  if count > 64 + 6 * n * halvings then print(name, n, "comparisons", count) end
  return count
end
seed = 7
function random()
  seed = seed * 16807 % 2147483647
  return seed
end

-- Decides each comparison as late and as badly as the earlier answers allow, so that every pivot comes out smallest.
function adversary()
  local decided, next, candidate = {}, 0, nil
  return function(a, b)
    if not decided[a.index] and not decided[b.index] then
      next = next + 1
      if a == candidate then decided[a.index] = next else decided[b.index] = next end
    end
    if not decided[a.index] then candidate = a end
    if not decided[b.index] then candidate = b end
    return (decided[a.index] or n + 1) < (decided[b.index] or n + 1)
  end
end

for k, size in ipairs({0, 1, 2, 3, 15, 16, 17, 31, 64, 255, 256, 257, 1000}) do
  n = size
  check("ascending", n, function(i) return i end)
  check("descending", n, function(i, n) return n - i end)
  check("organ pipe", n, function(i, n) if i < n / 2 then return i end return n - i end)
  check("random", n, random)
  check("always", n, random, function() return true end)
  check("arbitrary", n, random, function() return random() % 2 == 0 end)
  check("adversary", n, random, adversary())
end
n = 10000
check("adversary", n, random, adversary())

-- Elements that are equal to a pivot are done with it.
print(check("few values", n, function(i) return i * 7919 % 2 end) < 4 * n)  -- expect: true
