-- skip sanitized: the frames of a sanitized build are too large for so many calls
-- 200,000 nested script calls are within the limit, and ten thousand through natives, methods and closures.
function depth(n)
  if n == 0 then return 0 end
  return 1 + depth(n - 1)
end
function protected(n)
  if n == 0 then return 0 end
  local ok, below = pcall(protected, n - 1)
  return below + 1
end
object = {}
function object:depth(n) return n == 0 and 0 or 1 + self:depth(n - 1) end
function shared(n)
  local m = n
  return (function() return m == 0 and 0 or 1 + shared(m - 1) end)()
end
print(depth(199999), protected(10000), object:depth(10000), shared(5000))  -- expect: 199999	10000	10000	5000
