-- math.floor(x): the largest whole number that is not above x, as an integer where it fits.
print(math.floor(2.5), math.floor(-2.5), math.floor(2), math.floor(-2), math.floor(0))  -- expect: 2	-3	2	-2	0
print(math.floor(2.9999999999999996), math.floor(-0.0000000001), math.floor(tonumber("1e-300")))  -- expect: 2	-1	0

-- It computes with floats, so integers beyond 2^53 lose their last digits; 2^63 itself saturates.
print(math.floor(9007199254740993), math.floor(123456789012345678))  -- expect: 9007199254740992	123456789012345680
print(math.floor(9223372036854775807), math.floor(-9223372036854775808))  -- expect: 9223372036854775807	-9223372036854775808
limit = 4611686018427387904.0 * 2
print(math.floor(limit), math.floor(-limit), math.floor(9223372036854774784.0))  -- expect: 9223372036854775807	-9223372036854775808	9223372036854774784

-- Beyond that the float itself comes back.
huge = tonumber("1e300")
infinity = huge * huge
print(math.floor(huge), math.floor(-huge), math.floor(tonumber("1e19")), math.floor(-tonumber("9.3e18")))  -- expect: 1e+300	-1e+300	1e+19	-9.3e+18
print(math.floor(infinity), math.floor(-infinity), math.floor(infinity / infinity))  -- expect: inf	-inf	0

-- The results are integers: usable as keys and without a fraction.
zero = -1 / huge / huge
print(zero, math.floor(zero), math.floor(-0.0))  -- expect: -0	0	0

print(pcall(math.floor))  -- expect: false	math.floor expects 1 argument
print(pcall(math.floor, "1.5"))  -- expect: false	math.floor expects a numeric argument

half = math.floor("3" .. "")  -- expect error: math.floor expects a numeric argument
