-- args: {tmp}/out
-- Functions keep what they name alive, and nothing else: everything here is released where its block ends, also beside
-- functions that go on living. A program that counts its objects finds none left.
path = arg[1]
function content()
  local file = io.open(path)
  return file:read("a")
end
-- A file in a variable that no function names is written out where its block ends.
function save(text)
  local function line(s) return s .. "\n" end
  local file = io.open(path, "w")
  file:write(line(text))
  keep = line
end
save("beside a function")
print(content())  -- expect: beside a function
-- expect:
-- Each iteration has its own variables.
readers = {}
for k, v in pairs({a = 1, b = 2}) do readers[k] = function() return k .. v end end
print(readers.a(), readers.b())  -- expect: a1	b2
-- Functions that call themselves, directly or in functions inside, and functions that call others.
function recursive(n)
  local function fact(k) return k < 2 and 1 or k * fact(k - 1) end
  local function count(k)
    local again = function() return k > 0 and 1 + count(k - 1) or 0 end
    return again()
  end
  local function other(k) return fact(k) end
  local function helper(k) return other(k) + fact(k) end
  local same = fact
  fact(1)
  return same(n), count(n), helper(n), tostring(fact), fact == same
end
print(recursive(5))  -- expect: 120	5	240	function: fact	true
-- A function that counts in a variable, and one that only calls it.
function counting()
  local n, log, unused = 0, {}, io.open(path, "w")
  unused:write("closed with its block")
  local function next(by)
    n = n + by
    log[#log + 1] = n
    return n
  end
  local function twice() return next(1), next(10) end
  local function report() return #log, log[1], n end
  twice()
  by = twice
  return report
end
report = counting()
print(content())  -- expect: closed with its block
print(by())  -- expect: 12	22
print(report())  -- expect: 4	1	22
-- Parameters and loop variables that are assigned are shared; those that are not, are copied.
function shared(a, b)
  local set = function(v) a = v end
  local get = function() return a .. b end
  set("A")
  return get, set
end
get, set = shared("a", "b")
set(get())
print(get())  -- expect: Abb
fs = {}
for i, v in ipairs({"x", "y"}) do
  local first, second, third = i, v
  fs[i] = function(w)
    third = w or third
    second = second .. i
    return i .. v .. first .. second .. tostring(third)
  end
  first = first * 10
  v = v .. v
end
print(fs[1](), fs[2]("w"), fs[2]())  -- expect: 1xx10x1nil	2yy20y2w	2yy20y22w
-- With "local f = function", the f inside is the one that stood before: here a global.
g = function(n) return "global " .. n end
local g = function(n) return g(n) end
print(g(1))  -- expect: global 1
-- A local function whose name is assigned again, later or by itself.
local function renamed(n)
  if n > 0 then
    renamed = function() return "second" end
    return renamed(n)
  end
  return "first"
end
print(renamed(0), renamed(1), renamed(0))  -- expect: first	second	second
renamed = nil
-- Through several levels, some of which do not name the variable themselves.
function outer(a)
  local b = 1
  return function()
    local function inner()
      return function()
        b = b + 1
        return a .. b
      end
    end
    return inner
  end
end
print(outer("a")()()(), outer("z")()()())  -- expect: a2	z2
-- More variables than most functions need.
function many(a, b)
  local v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12 = 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12
  local w1, w2, w3, w4, w5, w6, w7, w8, w9, w10, w11, w12 = 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12
  return function()
    v3, w9 = v3 + 1, w9 + 1
    local v = v1 + v2 + v3 + v4 + v5 + v6 + v7 + v8 + v9 + v10 + v11 + v12
    return v + w1 + w2 + w3 + w4 + w5 + w6 + w7 + w8 + w9 + w10 + w11 + w12 + a + b
  end
end
m = many(1000, 2000)
print(m(), m())  -- expect: 3158	3160
-- The same by a declaration that follows a function that names it.
local function first() return 1 end
local function call() return first() end
function first() return 2 end
print(call())  -- expect: 2
