-- The remainder truncates: its sign follows the dividend.
print(7 % 3, -7 % 3, 7 % -3, -7 % -3)  -- expect: 1	-1	1	-1
print(-9223372036854775808 % -1)  -- expect: 0
print(-9223372036854775808 % 10, 9223372036854775807 % 10)  -- expect: -8	7

-- With a float operand the result is the float remainder, made an integer when whole.
print(5.5 % 2, -5.5 % 2, 5.5 % -2, -5.5 % -2)  -- expect: 1.5	-1.5	1.5	-1.5
print(3.0 % 2 == 1.0000000000000002)  -- expect: true
print(9223372036854775807 % 2, 9223372036854775807 % 2.0)  -- expect: 1	0
inf = 1.5
while inf + inf ~= inf do inf = inf * 2 end
print(5 % inf, -5.5 % inf, inf % 5)  -- expect: 5	-5.5	0

print(pcall(function() return 1 % 0 end))  -- expect: false	modulo by zero
print(pcall(function() return 1 % 0.0 end))  -- expect: false	modulo by zero
print(pcall(function() return 1.5 % 0.0000000000000002 end))  -- expect: false	modulo by zero
print(1 % 0.5, 1 % 0.0000000000000003 < 0.0000000000000003)  -- expect: 0	true

x = 5
  % 0  -- expect error: modulo by zero
