-- cyclic: a local function that holds itself through its own scope
-- With "local f = function", the f inside is the one that stood before: here a global.
f = function(n) return "global " .. n end
local f = function(n) return f(n) end
print(f(1))  -- expect: global 1
local function f(n)
  if n == 0 then return "local" end
  return f(n - 1)
end
print(f(3))  -- expect: local
