-- Unbounded recursion is an ordinary error, raised at the call.
function forever(n)
  return 1 + forever(n + 1)
end
print(pcall(forever, 1))  -- expect: false	stack overflow

-- Through calls in tail position, two functions, a method, an argument, pcall itself.
items = {1, 2}
function manyLocals(n)
  local a, b, c, d, e, f, g, h, i, j = n, items, "c", n, n, n, n, n, n, n
  for k = 1, 2 do
    for l, m in ipairs(items) do
      if a then return {manyLocals(a + 1)} end
    end
  end
end
print(pcall(manyLocals, 1))  -- expect: false	stack overflow
function capturing(n)
  local mine = n
  return (function() return capturing(mine + 1) .. mine end)()
end
print(pcall(capturing, 1))  -- expect: false	stack overflow
function throughPcall(n)
  local ok, message = pcall(throughPcall, n + 1)
  return message
end
print(throughPcall(1))  -- expect: stack overflow

-- Afterwards everything works as before.
function depth(n)
  if n == 0 then return 0 end
  return 1 + depth(n - 1)
end
print(depth(1000), pcall(error, "fine"))  -- expect: 1000	false	fine

function unbounded(n)
  n = n + 1
  unbounded(  -- expect error: stack overflow
    n)
end
unbounded(0)
