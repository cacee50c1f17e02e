-- Number literals, how numbers print, and which results become integers.

-- Decimal and hexadecimal integers.
print(0, 7, 007, 1234567890)  -- expect: 0	7	7	1234567890
print(0x10, 0XfF, 0xdeadBEEF)  -- expect: 16	255	3735928559
print(0x7FFFFFFFFFFFFFFF, 0xFFFFFFFFFFFFFFFF)  -- expect: 9223372036854775807	-1
print(0x, 0X + 1)  -- expect: 0	1

-- A decimal integer beyond 64 bits is the nearest float; negating it makes a whole result again.
print(9223372036854775808)  -- expect: 9.22337e+18
print(-9223372036854775808)  -- expect: -9223372036854775808

-- Floats print in general format with six significant digits.
print(1.0, 0.5, 1.50, 3.14159265, 0.1)  -- expect: 1	0.5	1.5	3.14159	0.1
print(100000.0, 1000000.0, 1234567.0)  -- expect: 100000	1e+06	1.23457e+06
print(0.0001, 0.00001, 0.000123456789)  -- expect: 0.0001	1e-05	0.000123457

-- A whole float prints like an integer but is not one: an integer equals a float within the
-- machine epsilon, two floats are compared exactly.
function kind(one)
  if one == 1.0000000000000002 then return "integer" end
  return "float"
end
print(kind(1), kind(1.0), kind(0x1))  -- expect: integer	float	integer
print(kind(0.5 + 0.5), kind(1.5 - 0.5), kind(0.5 * 2))  -- expect: integer	integer	integer
print(kind(3 / 3), kind(1.0 / 1), kind(1 / 1.0))  -- expect: float	float	float
print(kind(3.0 % 2), kind(-(-1.0)), kind(-(-1)))  -- expect: integer	integer	integer

-- Near-whole results are pulled onto the integer, the literal itself is not.
print(kind(1.0000000000000002 + 0))  -- expect: integer
print(0.0000000000000001, 0.0000000000000001 + 0)  -- expect: 1e-16	0
print(0.0000000000000003 + 0)  -- expect: 3e-16
print(0.1 + 0.2 == 0.3, 0.1 + 0.2)  -- expect: false	0.3

-- Negative zero exists only as a quotient: every other operator makes it the integer 0.
print(0 / -1, -0.0, -0, 0.0)  -- expect: -0	0	0	0
print(0 / -1 + 0, (0 / -1) * 5, -(0 / -1))  -- expect: 0	0	0

-- Letters and dots after a number start the next token.
print(1 ..2, 1 .. 2, 1.5 ..2)  -- expect: 12	12	1.52
