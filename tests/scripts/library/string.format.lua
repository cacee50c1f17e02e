-- string.format(fmt, ...): %d, %i, %f, %s and %%, without flags, widths or precisions.
-- %d truncates a float toward zero and stays within the 64-bit range.
huge = tonumber("1e300")
nan = huge * huge / (huge * huge)
print(string.format("%d %d %i %d %d", 3.9, -3.9, 2.0, -huge, nan))  -- expect: 3 -3 2 -9223372036854775808 0
-- %f is the printable form of a float: six significant digits, no trailing zeros. %s takes any value.
print(string.format("%f %f %f %f", 1.5, 2, 12345678, -huge * huge))  -- expect: 1.5 2 1.23457e+07 -inf
print(string.format("%s %s %s", nil, 1.0, print), #string.format("a\0b%s\0", "%d"))  -- expect: nil 1 function: print	6
-- Surplus arguments are ignored; explicit nils are arguments. A missing argument is noticed before the token.
print(string.format("%d", 1, 2, 3), string.format("%s %s", nil, nil), ("%%d"):format())  -- expect: 1	nil nil	%d
print(pcall(string.format, "%x"))  -- expect: false	missing format argument
print(pcall(string.format, "%f", "1.5"))  -- expect: false	float format expects a number
print(pcall(string.format, "abc%"))  -- expect: false	unterminated format token
