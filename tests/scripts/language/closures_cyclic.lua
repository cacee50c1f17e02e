-- cyclic: local functions and objects that hold themselves through their own scope
-- Recursive local functions, objects of closures, mutually recursive locals.
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

-- A local function inside a function, one per call.
function sumTree(tree)
  local total = 0
  local function visit(node)
    if type(node) == "table" then
      for k, v in pairs(node) do visit(v) end
    else
      total = total + node
    end
  end
  visit(tree)
  return total
end
print(sumTree({1, {2, 3, {4}}, x = {y = 5}}))  -- expect: 15

-- An object whose methods are functions over its own local.
function makeStack()
  local self = {}
  local items = {}
  self.push = function(v)
    items[#items + 1] = v
    return self
  end
  self.pop = function()
    local v = items[#items]
    items[#items] = nil
    return v
  end
  self.size = function() return #items end
  return self
end
local s = makeStack()
s.push(1).push("two").push({3})
print(s.size(), s.pop()[1], s.pop(), s.size(), makeStack().size())  -- expect: 3	3	two	1	0

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

-- A function replaced while another one still holds the old one.
local function version() return 1 end
local old = version
version = function() return old() + 1 end
print(version(), old())  -- expect: 2	1

-- A table that contains itself.
local ring = {name = "ring"}
ring.self = ring
print(ring.self.self.self.name, ring == ring.self)  -- expect: ring	true
