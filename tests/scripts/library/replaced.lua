-- What a library's name stands for is asked at each call, before the arguments are evaluated.

local n = 2.5
local function results()
  return math.floor(n), math.floor(n + 1), type(n), string.sub("abc", 2, 2), ("abc"):sub(3)
end
print(results())
-- expect: 2	3	number	b	c

local floor, kind = math.floor, type
function math.floor(x) return "floor of " .. x, 1 end
function type(x) return kind(x) .. "!" end
function string.sub(text, first) return text .. first end
print(results())
-- expect: floor of 2.5	floor of 3.5	number!	abc2	abc3
print(math.floor(1))
-- expect: floor of 1	1

-- An argument that changes the name comes too late.
math.floor = floor
local function forget(value)
  math.floor = nil
  return value
end
print(math.floor(forget(7.5)), pcall(function() return math.floor(7.5) end))
-- expect: 7	false	attempt to call a nil value
math.floor = floor
floor = nil
print(pcall(function() return math.floor(forget({})) end))
-- expect: false	math.floor expects a numeric argument

math = tostring
print(pcall(function() return math.floor(1) end))
-- expect: false	attempt to index a function value
math = {floor = kind}
print(math.floor(1), pcall(math.floor))
-- expect: number	false	type expects 1 argument
