-- tonumber(v, base): numbers pass unchanged, text is parsed, everything else is nil.
print(tonumber(5), tonumber(-2.5), tonumber(5, 16), tonumber(5, "any"))  -- expect: 5	-2.5	5	5
print(tonumber(nil), tonumber(true), tonumber({}), tonumber(print))  -- expect: nil	nil	nil	nil

-- Integers.
print(tonumber("0"), tonumber("42"), tonumber("-7"), tonumber("+7"), tonumber("007"))  -- expect: 0	42	-7	7	7
print(tonumber("9223372036854775807"), tonumber("-9223372036854775808"))  -- expect: 9223372036854775807	-9223372036854775808

-- Decimal text with a point or an exponent; whole values become integers.
print(tonumber("2.5"), tonumber("2.0"), tonumber("3."), tonumber(".5"), tonumber("-.5"))  -- expect: 2.5	2	3	0.5	-0.5
print(tonumber("1e3"), tonumber("1E3"), tonumber("1.5e1"), tonumber("25e-1"), tonumber("1e+2"))  -- expect: 1000	1000	15	2.5	100
print(tonumber("9223372036854775808"), tonumber("99999999999999999999"))  -- expect: 9223372036854775807	1e+20
print(tonumber("-9223372036854775809"), tonumber("1e400"))  -- expect: -9223372036854775808	nil

-- White space may lead but not trail; the whole text must be used.
print(tonumber(" 7"), tonumber("\t\n 7"), tonumber(" 2.5"), tonumber("7 "), tonumber("7\n"))  -- expect: 7	7	2.5	nil	nil
print(tonumber("1e"), tonumber("e1"), tonumber("."), tonumber("1.2.3"), tonumber("1,5"))  -- expect: nil	nil	nil	nil	nil
print(tonumber("1\0"), tonumber("\0001"), tonumber("1\0002"))  -- expect: nil	nil	nil
print(tonumber(""))  -- expect: 0

-- No hexadecimal in base 10.
print(tonumber("0x10"), tonumber("0x"), tonumber("0x1p4"), tonumber("ff"))  -- expect: nil	nil	nil	nil

-- Other bases; digits beyond 9 are letters of either case, no fractions.
print(tonumber("10", 2), tonumber("10", 8), tonumber("10", 16), tonumber("10", 36))  -- expect: 2	8	16	36
print(tonumber("ff", 16), tonumber("FF", 16), tonumber("fF", 16), tonumber("-ff", 16))  -- expect: 255	255	255	-255
print(tonumber("0x1F", 16), tonumber("0X1f", 16), tonumber("zz", 36), tonumber("777", 8))  -- expect: 31	31	1295	511
print(tonumber("8", 8), tonumber("2", 2), tonumber("g", 16), tonumber("1.5", 16))  -- expect: nil	nil	nil	nil
print(tonumber("7fffffffffffffff", 16), tonumber("ffffffffffffffff", 16))  -- expect: 9223372036854775807	nil
print(tonumber("101", 2.9), tonumber("12", nil), tonumber("1.5", nil))  -- expect: 5	12	1.5
print(tonumber("1", 1), tonumber("1", 37), tonumber("1", 0), tonumber("1", -2))  -- expect: nil	nil	nil	nil

print(pcall(tonumber))  -- expect: false	tonumber expects between 1 and 2 arguments
print(pcall(tonumber, "1", "10"))  -- expect: false	tonumber expects a numeric argument

n = tonumber("5") +
  tonumber("5", "ten")  -- expect error: tonumber expects a numeric argument
