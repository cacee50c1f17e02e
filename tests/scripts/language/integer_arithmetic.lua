-- Integer arithmetic is exact in 64 bits; an overflowing result goes through floats and comes
-- back as an integer, saturated, when it is whole and within range.
max = 9223372036854775807
min = -9223372036854775808

print(1 + 2, 5 - 8, 6 * 7, -3 * -4)  -- expect: 3	-3	42	12
print(3037000499 * 3037000499)  -- expect: 9223372030926249001

-- Overflow by a little lands on 2^63 and saturates.
print(max + 1, 1 + max, max - -1)  -- expect: 9223372036854775807	9223372036854775807	9223372036854775807
print(min - 1, -1 + min)  -- expect: -9223372036854775808	-9223372036854775808
print(0 - min, min * -1)  -- expect: 9223372036854775807	9223372036854775807
print(4611686018427387904 * 2)  -- expect: 9223372036854775807

-- Overflow beyond 2^63 stays a float.
print(max + 1025, max + max, max * 2)  -- expect: 9.22337e+18	1.84467e+19	1.84467e+19
print(3037000500 * 3037000500)  -- expect: 9.22337e+18

-- Unary minus: the most negative integer has no counterpart and saturates.
print(-5, -(-5), - - 5, -0)  -- expect: -5	5	5	0
print(-max, -min, -(-max))  -- expect: -9223372036854775807	9223372036854775807	9223372036854775807

-- Operand types are checked after both sides ran; strings never become numbers.
print(pcall(function() return "10" + 1 end))  -- expect: false	operator '+' expects numbers
print(pcall(function() return nil - 1 end))  -- expect: false	operator '-' expects numbers
print(pcall(function() return {} * 2 end))  -- expect: false	operator '*' expects numbers
print(pcall(function() return true / 2 end))  -- expect: false	operator '/' expects numbers
print(pcall(function() return print % 2 end))  -- expect: false	operator '%' expects numbers
print(pcall(function() return "a" / 0 end))  -- expect: false	operator '/' expects numbers
print(pcall(function() return -"5" end))  -- expect: false	unary '-' expects a number
