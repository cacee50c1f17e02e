-- math.min(x, ...): the smallest; a whole result is an integer whatever the arguments were.
print(math.min(1, 2.5), math.min(3, 1, 2), math.min(2.5, 1.5), math.min(-1, -2))  -- expect: 1	1	1.5	-2
print(math.min(5), math.min(5.0), math.min(2.5), math.min(7, 7, 7))  -- expect: 5	5	2.5	7
print(math.min(2.0, 3), math.min(-0.5, 0), math.min(0.1, 0.2))  -- expect: 2	-0.5	0.1
print(math.min(1, 2, 3, 4, 5, 6, 7, 8, 9, 0), math.min(9, 8, 7, 6, 5, 4, 3, 2, 1))  -- expect: 0	1

-- Negative zero is whole, so it is the integer 0.
zero = -1 / tonumber("1e300") / tonumber("1e300")
print(zero, math.min(zero), math.min(0, zero), 1 / (math.min(zero, 0) + 1))  -- expect: -0	0	0	1

-- Close to whole is whole; integers beyond 2^53 lose their last digits.
print(math.min(1.0000000000000002) * 4503599627370496, math.min(1.0000000000000004) * 4503599627370496)  -- expect: 4503599627370496	4503599627370498
print(math.min(9007199254740993), math.min(9223372036854775807), math.min(-9223372036854775808))  -- expect: 9007199254740992	9223372036854775807	-9223372036854775808
print(math.min(9223372036854775807, 9223372036854775806), math.min(9007199254740992, 9007199254740993))  -- expect: 9223372036854775807	9007199254740992
huge = tonumber("1e300")
print(math.min(huge), math.min(-huge, 1), math.min(huge, 1), math.min(tonumber("1e19"), huge))  -- expect: 1e+300	-1e+300	1	1e+19

-- A NaN loses against every number.
infinity = huge * huge
nan = infinity / infinity
print(math.min(nan, 1), math.min(1, nan), math.min(nan, 2.5, nan), math.min(3, nan, 2))  -- expect: 1	1	2.5	2
print(math.min(infinity, 5), math.min(-infinity, 5), math.min(infinity), math.min(nan) ~= math.min(nan))  -- expect: 5	-inf	inf	true
print(math.min(nan, infinity), math.min(-infinity, nan))  -- expect: inf	-inf

print(pcall(math.min))  -- expect: false	math.min expects at least 1 arguments
print(pcall(math.min, "1"))  -- expect: false	math.min expects a numeric argument
print(pcall(math.min, 1, "2"))  -- expect: false	math.min expects a numeric argument
print(pcall(math.min, 1, nil))  -- expect: false	math.min expects a numeric argument
print(pcall(math.min, nil, 1))  -- expect: false	math.min expects a numeric argument
print(pcall(math.min, 1, 2, 3, {}))  -- expect: false	math.min expects a numeric argument
print(pcall(math.min, true))  -- expect: false	math.min expects a numeric argument

smallest = math.min(
  3, 1) + math.min(2, "x")  -- expect error: math.min expects a numeric argument
