-- Numbers as programs write them, and what operators refuse; their results: tests/unit/operators_test.cpp.
print(7 % -3, -7 % 3, 5.5 % -2, 7 / 2, 6 / 2, 0XfF, 0xFFFFFFFFFFFFFFFF, 0x)  -- expect: 1	-1	1.5	3.5	3	255	-1	0
print(9223372036854775808, 1.50, 1234567.0, 0.00001, 0x10000000000000002)  -- expect: 9.22337e+18	1.5	1.23457e+06	1e-05	2

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
