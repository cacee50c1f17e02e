-- Float arithmetic beyond the normal range: infinities, NaN, division.

-- Multiplying by ten passes the integer range, then the float range.
function power(base, n)
  local result = 1
  for i = 1, n do result = result * base end
  return result
end
print(power(10, 18), power(10, 19), power(10, 100))  -- expect: 1000000000000000000	1e+19	1e+100
print(power(2, 62), power(2, 63), power(2, 64))  -- expect: 4611686018427387904	9223372036854775807	1.84467e+19
inf = power(10.5, 1000)
print(inf, -inf, inf + inf, inf * -2)  -- expect: inf	-inf	inf	-inf
print(1 / inf, -1 / inf, inf / 2)  -- expect: 0	-0	inf

-- A NaN result of + - * % and unary minus is the integer 0.
print(inf - inf, inf + -inf, 0 * inf, inf % 2)  -- expect: 0	0	0	0

-- Only a quotient can hold NaN.
nan = inf / inf
print(nan == nan, nan ~= nan, nan == 0, nan == 1)  -- expect: false	true	false	false
print(nan < 1, nan > 1, nan <= 1, nan >= 1)  -- expect: false	false	false	false
print(nan + 1, nan - nan, nan * 2, -nan, nan % 3, 3 % nan)  -- expect: 0	0	0	0	0	0

-- A quotient is always a float and is never pulled onto an integer.
print(4 / 2, 7 / 2, -7 / 2, 6 / 2, 1 / 4)  -- expect: 2	3.5	-3.5	3	0.25
print(9223372036854775807 / 1, 9007199254740993 / 1 == 9007199254740992)  -- expect: 9.22337e+18	true
print(2 / 2 == 1.0000000000000002, 1.0 * 1 == 1.0000000000000002)  -- expect: false	true

-- Divisors are zero up to the machine epsilon.
print(pcall(function() return 1 / 0 end))  -- expect: false	division by zero
print(pcall(function() return 1.5 / (0 / -1) end))  -- expect: false	division by zero
print(pcall(function() return 1 / 0.0000000000000001 end))  -- expect: false	division by zero
print(1 / 0.0000000000000004, 1 / -0.0000000000000004)  -- expect: 2.5e+15	-2.5e+15

-- Mixed operands: the integer becomes the nearest double first.
print(9007199254740993 + 0.0, 9007199254740993 * 1)  -- expect: 9007199254740992	9007199254740993
print(9223372036854775807 - 1.0, 9223372036854775807 + 0.5)  -- expect: 9223372036854775807	9223372036854775807

x = 10
y = x / (2 - 1 - 1)  -- expect error: division by zero
