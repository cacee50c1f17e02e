-- Numbers as programs see them: integers of 64 bits, floats, and which results are which.
max = 9223372036854775807
min = -9223372036854775808
print(7 % -3, -7 % 3, 5.5 % -2, 7 / 2, 6 / 2, 0XfF, 0xFFFFFFFFFFFFFFFF, 0x)  -- expect: 1	-1	1.5	3.5	3	255	-1	0
print(9223372036854775808, 1.50, 1234567.0, 0.00001, 0x10000000000000002)  -- expect: 9.22337e+18	1.5	1.23457e+06	1e-05	2

-- Overflow goes through floats and comes back saturated where it is within range.
print(max + 1, min - 1, -min)  -- expect: 9223372036854775807	-9223372036854775808	9223372036854775807
print(max + 1025, 3037000500 * 3037000500, min % -1)  -- expect: 9.22337e+18	9.22337e+18	0

-- A whole float prints like an integer but is not one: two floats are compared exactly.
function kind(one)
  if one == 1.0000000000000002 then return "integer" end
  return "float"
end
print(kind(1), kind(1.0), kind(0.5 + 0.5), kind(3 / 3), kind(-(-1.0)))  -- expect: integer	float	integer	float	integer

-- Only a quotient can be a negative zero or hold NaN; every other operator makes those the integer 0.
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
nan = inf / inf
print(0 / -1, 0 / -1 + 0, -(0 / -1), nan ~= nan, nan + 1, inf - inf, -inf, nan >= 1)  -- expect: -0	0	0	true	0	0	-inf	false

-- Divisors are zero up to the machine epsilon; strings never become numbers.
print(pcall(function() return 1 / 0 end))  -- expect: false	division by zero
print(pcall(function() return 1 / 0.0000000000000001 end))  -- expect: false	division by zero
print(pcall(function() return 1.5 % (0 / -1) end))  -- expect: false	modulo by zero
print(pcall(function() return "10" + 1 end))  -- expect: false	operator '+' expects numbers
print(pcall(function() return nil - 1 end))  -- expect: false	operator '-' expects numbers
print(pcall(function() return {} * 2 end))  -- expect: false	operator '*' expects numbers
print(pcall(function() return "a" / 0 end))  -- expect: false	operator '/' expects numbers
print(pcall(function() return print % 2 end))  -- expect: false	operator '%' expects numbers
print(pcall(function() return -"5" end))  -- expect: false	unary '-' expects a number
