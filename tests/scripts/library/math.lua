-- math.floor(x): the largest whole number that is not above x. math.max and math.min: a whole result is an integer,
-- whatever the arguments were. All compute with floats.
-- Integers beyond 2^53 lose their last digits; 2^63 itself saturates, beyond that the float itself comes back.
print(math.floor(9007199254740993), math.max(9007199254740993))  -- expect: 9007199254740992	9007199254740992
limit = 4611686018427387904.0 * 2
print(math.floor(limit), math.floor(-limit))  -- expect: 9223372036854775807	-9223372036854775808
huge = tonumber("1e300")
infinity = huge * huge
print(math.floor(huge), math.floor(-tonumber("9.3e18")), math.floor(infinity))  -- expect: 1e+300	-9.3e+18	inf

-- Negative zero is whole, so it is the integer 0; close to whole is whole. A NaN loses against every number.
zero, nan = -1 / infinity, infinity / infinity
print(zero, math.floor(zero), math.max(zero), math.min(0, zero))  -- expect: -0	0	0	0
print(math.max(1.0000000000000002) * 4503599627370496, math.max(1.0000000000000004) * 4503599627370496)
-- expect: 4503599627370496	4503599627370498
print(math.floor(nan), math.max(nan, 1), math.max(3, nan, 2), math.min(1, nan))  -- expect: 0	1	3	1
print(math.min(nan, 2.5, nan), math.max(nan) ~= math.max(nan))  -- expect: 2.5	true
