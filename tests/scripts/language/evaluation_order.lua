-- What runs when: each part of a statement once, from left to right, and the checks after what they check.
function pick(label, value)
  trace = trace .. label .. " "
  return value
end
-- What ran, and how it ended.
function run(f)
  trace = ""
  local ok, result = pcall(f)
  return trace, result
end

-- Operands before their types.
print(run(function() return pick("left", "x") + pick("right", 1) end))
-- expect: left right 	operator '+' expects numbers
print(run(function() return pick("left", {}) < pick("right", 1) end))
-- expect: left right 	ordered comparisons require matching numbers or strings
-- A callee, its arguments, and only then whether it can be called; but a field of it before the arguments.
print(run(function() return pick("callee", nil)(pick("first"), pick("second")) end))
-- expect: callee first second 	attempt to call a nil value
print(run(function() return no_table.field(pick("never")) end))  -- expect: 	attempt to index a nil value
print(run(function() return pick("object", nil):m(pick("never")) end))  -- expect: object 	attempt to index a nil value
-- Fields of a constructor: keys before their values, and refused before them too.
print(run(function() return {pick("1"), [pick("k")] = pick("v"), n = pick("n")} end))
-- expect: 1 k 	table keys must be numbers, strings, or booleans
print(run(function() return {pick("1"), [pick("k", 1)] = pick("v"), n = pick("n"), pick("2", 2)}[2] end))
-- expect: 1 k v n 2 	2
-- An assignment: the values, then target by target the object, its check, the key and the store.
t = {}
print(run(function() pick("t", t)[pick("a", 1)], pick("u", t)[pick("b", 2)] = pick("x"), pick("y") end))
-- expect: x y t a u b 	nil
print(run(function() nothing[pick("never")] = pick("value", 1) end))
-- expect: value 	attempt to assign into a nil value
print(run(function() t[pick("key")] = pick("value", 1) end))
-- expect: value key 	table index must be a number, string, or boolean
-- Loops: the whole list, of which only the first value counts; the bounds before any check.
print(run(function() for k, v in pick("it", pairs({5})), pick("s"), pick("c") do pick(k) pick(v) end end))
-- expect: it s c 1 5 	nil
print(run(function() for i = pick("start", "1"), pick("limit", 2), pick("step", 0) do end end))
-- expect: start limit step 	numeric for loop expects numeric bounds
-- Conditions: the right operand only when it decides.
print(run(function() return pick("a") and pick("b") or pick("c", false) or pick("d", 1) or pick("e") end))
-- expect: a c d 	1

-- Operands, arguments, returned values and fields keep the values they had when evaluated (more operands:
-- tests/fuzz/script_generator.cpp).
n = 1
function bump()
  n = n + 10
  return n
end
print(n + bump(), bump() + n, n .. "," .. bump())  -- expect: 12	42	21,31
print((function() return n, bump(), n end)())  -- expect: 31	41	41
