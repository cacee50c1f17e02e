-- tonumber(v, base): numbers pass unchanged, text is parsed, everything else is nil.
print(tonumber(5), tonumber(-2.5), tonumber(5, "any"), tonumber(nil), tonumber(true))  -- expect: 5	-2.5	5	nil	nil
print(tonumber("-7"), tonumber("+7"), tonumber("007"), tonumber(""))  -- expect: -7	7	7	0

-- Decimal text with a point or an exponent; whole values become integers.
print(tonumber("2.5"), tonumber("2.0"), tonumber("3."), tonumber(".5"), tonumber("-.5"))  -- expect: 2.5	2	3	0.5	-0.5
print(tonumber("1e3"), tonumber("1.5E1"), tonumber("25e-1"), tonumber("1e400"))  -- expect: 1000	15	2.5	nil
print(tonumber("9223372036854775807"), tonumber("9223372036854775808"))  -- expect: 9223372036854775807	9223372036854775807
print(tonumber("-9223372036854775808"), tonumber("99999999999999999999"))  -- expect: -9223372036854775808	1e+20

-- White space may lead but not trail; the whole text must be used. No hexadecimal in base 10.
print(tonumber(" 7"), tonumber("\t\n 2.5"), tonumber("7 "), tonumber("7\n"))  -- expect: 7	2.5	nil	nil
print(tonumber("1e"), tonumber("e1"), tonumber("."), tonumber("1.2.3"), tonumber("1\0"))  -- expect: nil	nil	nil	nil	nil
print(tonumber("0x10"), tonumber("0x1p4"), tonumber("-0x1p4"), tonumber(" 0X.8"), tonumber("ff"))  -- expect: nil	nil	nil	nil	nil

-- Other bases; digits beyond 9 are letters of either case, no fractions.
print(tonumber("10", 2), tonumber("10", 36), tonumber("zz", 36), tonumber("777", 8))  -- expect: 2	36	1295	511
print(tonumber("ff", 16), tonumber("fF", 16), tonumber("-ff", 16), tonumber("0X1f", 16))  -- expect: 255	255	-255	31
print(tonumber("7fffffffffffffff", 16), tonumber("ffffffffffffffff", 16))  -- expect: 9223372036854775807	nil
print(tonumber("101", 2.9), tonumber("1.5", nil))  -- expect: 5	1.5
print(tonumber("8", 8), tonumber("1.5", 16), tonumber("1", 1), tonumber("1", 37))  -- expect: nil	nil	nil	nil

-- The names of infinity and NaN, as the C library knows them, are floats in base 10.
print(tonumber("inf"), tonumber("-inf"), tonumber(" +Infinity"), tonumber("INF") > tonumber("1e308"))  -- expect: inf	-inf	inf	true
print(tonumber("nan"), tonumber("NaN(0x1f)"), tonumber("nan") == tonumber("nan"))  -- expect: nan	nan	false
print(tonumber("infinit"), tonumber("inf "), tonumber("nan("), tonumber("inf", 10), tonumber("inf", 16))  -- expect: nil	nil	nil	inf	nil
