-- math.min(x, ...): the smallest; a whole result is an integer whatever the arguments were.
print(math.min(1, 2.5), math.min(3, 1, 2), math.min(2.5, 1.5), math.min(-1, -2))  -- expect: 1	1	1.5	-2
print(math.min(5), math.min(5.0), math.min(2.5), math.min(7, 7, 7))  -- expect: 5	5	2.5	7

-- Negative zero is whole, so it is the integer 0.
zero = -1 / tonumber("1e300") / tonumber("1e300")
print(zero, math.min(zero), math.min(0, zero), 1 / (math.min(zero, 0) + 1))  -- expect: -0	0	0	1

huge = tonumber("1e300")
print(math.min(huge), math.min(-huge, 1), math.min(huge, 1), math.min(tonumber("1e19"), huge))  -- expect: 1e+300	-1e+300	1	1e+19

-- A NaN loses against every number.
infinity = huge * huge
nan = infinity / infinity
print(math.min(nan, 1), math.min(1, nan), math.min(nan, 2.5, nan), math.min(3, nan, 2))  -- expect: 1	1	2.5	2

print(pcall(math.min))  -- expect: false	math.min expects at least 1 arguments
print(pcall(math.min, 1, "2"))  -- expect: false	math.min expects a numeric argument

smallest = math.min(
  3, 1) + math.min(2, "x")  -- expect error: math.min expects a numeric argument
