-- cyclic: local functions and objects that hold themselves through their own scope
-- Recursive local functions, mutually recursive locals.
local function factorial(n)
  if n == 0 then return 1 end
  return n * factorial(n - 1)
end
print(factorial(5), factorial(20))  -- expect: 120	2432902008176640000

local even, odd
function even(n)
  if n == 0 then return true end
  return odd(n - 1)
end
function odd(n)
  if n == 0 then return false end
  return even(n - 1)
end
print(even(10), even(7), odd(7), tostring(even))  -- expect: true	false	true	function: even

-- With "local f = function", the f inside is the one that stood before: here a global.
f = function(n) return "global " .. n end
local f = function(n) return f(n) end
print(f(1))  -- expect: global 1
local function f(n)
  if n == 0 then return "local" end
  return f(n - 1)
end
print(f(3))  -- expect: local

-- A captured loop variable that becomes the function itself.
for i, v in ipairs({"a", "b"}) do
  local name = v
  v = function(n)
    if n == 0 then return name .. i end
    return v(n - 1)
  end
  print(v(2))
end
-- expect: a1
-- expect: b2

-- A table that contains itself.
local ring = {name = "ring"}
ring.self = ring
print(ring.self.self.self.name, ring == ring.self)  -- expect: ring	true
