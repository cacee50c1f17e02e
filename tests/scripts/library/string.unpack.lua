-- string.unpack(fmt, data, pos): unsigned 32-bit fields, then the position behind the last one.
print(string.unpack("I4", "a\0\0\0"), string.unpack("<I4", "a\0\0\0"), string.unpack(">I4", "a\0\0\0"))  -- expect: 97	97	1627389952	5
print(string.unpack("I4I4", "abcdefgh"))  -- expect: 1684234849	1751606885	9

-- The order of bytes holds until it is changed again, and starts as little-endian in each call.
print(string.unpack("<I4>I4<I4", "abcdabcdabcd"))  -- expect: 1684234849	1633837924	1684234849	13

-- Values are never negative.
print(string.unpack("I4", "ÿÿ"))  -- expect: 3217276867	5

-- White space is skipped, but not between I and its width.
print(string.unpack(" \t\n\rI4  I4 ", "abcdabcd"))  -- expect: 1684234849	1684234849	9
print(pcall(string.unpack, "I 4", "abcd"))  -- expect: false	stoi

-- Without fields only the position comes back.
print(string.unpack(" <> ", "abcd", 3))  -- expect: 3

-- The position to start at; what is below 1 counts as 1.
print(string.unpack("I4", "....abcd", 5))  -- expect: 1684234849	9
print(string.unpack("I4", "abcd", 1.9), string.unpack("I4", "abcd", 0), string.unpack("I4", "abcd", -5))  -- expect: 1684234849	1684234849	1684234849	5
low, high = -9223372036854775808, 9223372036854775807
print(string.unpack("", "abcd", low), string.unpack("", "abcd", high), string.unpack("", "", 0))  -- expect: 1	9223372036854775807	1
print(string.unpack("", "abcd", tonumber("1e300")), string.unpack("", "abcd", -tonumber("1e300")))  -- expect: 9223372036854775807	1

-- The width must be 4, however it is written.
print(string.unpack("I04", "abcd"))  -- expect: 1684234849	5
print(pcall(string.unpack, "I2", "abcd"))  -- expect: false	TarvelLua only supports string.unpack I4 fields
print(pcall(string.unpack, "I", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "I99999999999999999999", "abcd"))  -- expect: false	stoi

-- Too little data, also when an earlier field could be read.
print(pcall(string.unpack, "I4I4", "abcdefg"))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4", "abcd", high))  -- expect: false	string.unpack ran past the end of the buffer

-- Everything else is no format; the width is checked before the data, both before what follows.
print(pcall(string.unpack, "i4", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "I4z", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "I4x", "abc"))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I2", ""))  -- expect: false	TarvelLua only supports string.unpack I4 fields

print(pcall(string.unpack, "I4"))  -- expect: false	string.unpack expects between 2 and 3 arguments
print(pcall(string.unpack, 4, "abcd"))  -- expect: false	string.unpack expects a string argument
print(pcall(string.unpack, "I4", "abcd", "1"))  -- expect: false	string.unpack expects a numeric argument

size = string.unpack("I4", "abc")  -- expect error: string.unpack ran past the end of the buffer
