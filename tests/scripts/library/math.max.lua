-- math.max(x, ...): the largest; a whole result is an integer whatever the arguments were.
print(math.max(1, 2.5), math.max(3, 1, 2), math.max(2.5, 1.5), math.max(-1, -2))  -- expect: 2.5	3	2.5	-1
print(math.max(5), math.max(5.0), math.max(2.5), math.max(7, 7, 7))  -- expect: 5	5	2.5	7

-- Negative zero is whole, so it is the integer 0.
zero = -1 / tonumber("1e300") / tonumber("1e300")
print(zero, math.max(zero), math.max(0, zero), 1 / (math.max(zero, 0) + 1))  -- expect: -0	0	0	1

-- Close to whole is whole; integers beyond 2^53 lose their last digits.
print(math.max(1.0000000000000002) * 4503599627370496, math.max(1.0000000000000004) * 4503599627370496)  -- expect: 4503599627370496	4503599627370498
print(math.max(9007199254740993), math.max(9223372036854775807), math.max(-9223372036854775808))  -- expect: 9007199254740992	9223372036854775807	-9223372036854775808
huge = tonumber("1e300")
print(math.max(huge), math.max(-huge, 1), math.max(huge, 1), math.max(tonumber("1e19"), huge))  -- expect: 1e+300	1	1e+300	1e+300

-- A NaN loses against every number.
infinity = huge * huge
nan = infinity / infinity
print(math.max(nan, 1), math.max(1, nan), math.max(nan, 2.5, nan), math.max(3, nan, 2))  -- expect: 1	1	2.5	3
print(math.max(infinity, 5), math.max(-infinity, 5), math.max(infinity), math.max(nan) ~= math.max(nan))  -- expect: inf	5	inf	true

print(pcall(math.max))  -- expect: false	math.max expects at least 1 arguments
print(pcall(math.max, 1, "2"))  -- expect: false	math.max expects a numeric argument

largest = math.max(
  3, 1) + math.max(2, "x")  -- expect error: math.max expects a numeric argument
