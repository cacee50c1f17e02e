-- string.format(fmt, ...): %d, %i, %f, %s and %%, without flags, widths or precisions.
print(string.format("plain"), string.format("%d%%", 50), string.format("%s and %s", "a", "b"))  -- expect: plain	50%	a and b
print(#string.format(""), string.format("%%"), string.format("%%d"), string.format("%%%%s%%"))  -- expect: 0	%	%d	%%s%

-- %d truncates a float toward zero and stays within the 64-bit range.
print(string.format("%d %d %d", 3.9, -3.9, 0.5), string.format("%i", 2.0))  -- expect: 3 -3 0	2
huge = tonumber("1e300")
infinity = huge * huge
nan = infinity / infinity
print(string.format("%d %d", huge, -huge))  -- expect: 9223372036854775807 -9223372036854775808
print(string.format("%d %d %d", infinity, -infinity, nan))  -- expect: 9223372036854775807 -9223372036854775808 0

-- %f is the printable form of a float: six significant digits, no trailing zeros.
print(string.format("%f %f %f %f", 1.5, 2, 0.1, 100))  -- expect: 1.5 2 0.1 100
print(string.format("%f %f %f", 1 / 3, 123456.7, 1234567.8))  -- expect: 0.333333 123457 1.23457e+06
print(string.format("%f %f %f", infinity, -infinity, -2.50))  -- expect: inf -inf -2.5

-- %s takes any value.
print(string.format("%s %s %s %s %s", nil, true, false, 12, 1.0))  -- expect: nil true false 12 1
print(string.format("%s %s", 1 / 3, print), string.format("%s", "a\0b") == "a\0b")  -- expect: 0.333333 function: print	true
print(string.format("%s", "%d"), #string.format("%s%s", string.rep("x", 100000), string.rep("y", 100000)))  -- expect: %d	200000

-- Surplus arguments are ignored; explicit nils are arguments.
print(string.format("%d", 1, 2, 3), string.format("x", nil), string.format("%s %s", nil, nil))  -- expect: 1	x	nil nil
print(("%s=%d"):format("k", 5), ("100%%"):format())  -- expect: k=5	100%

-- Zero bytes and other bytes are copied.
print(#string.format("a\0b%s\0", "c"), string.format("\n%s", "é") == "\né")  -- expect: 5	true

print(pcall(string.format, "%d", "7"))  -- expect: false	integer format expects a number
print(pcall(string.format, "%f", "1.5"))  -- expect: false	float format expects a number
print(pcall(string.format, "%s"))  -- expect: false	missing format argument
print(pcall(string.format, "abc%"))  -- expect: false	unterminated format token

-- A missing argument is noticed before the token is looked at.
print(pcall(string.format, "%x"))  -- expect: false	missing format argument
print(pcall(string.format, "%x", 255))  -- expect: false	unsupported format token %x
print(pcall(string.format, "%5d", 1))  -- expect: false	unsupported format token %5
ok, message = pcall(string.format, "%\0", 1)
print(ok, #message, message == "unsupported format token %\0")  -- expect: false	27	true

print(pcall(string.format))  -- expect: false	string.format expects at least 1 arguments
print(pcall(string.format, 5))  -- expect: false	string.format expects a string argument

message = string.format("%s: %d",  -- expect error: integer format expects a number
  "count", "many")
