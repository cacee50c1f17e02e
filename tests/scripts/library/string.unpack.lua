-- string.unpack(fmt, data, pos): unsigned 32-bit fields, then the position behind the last one.
print(string.unpack("I4", "a\0\0\0"), string.unpack("<I4", "a\0\0\0"), string.unpack(">I4", "a\0\0\0"))  -- expect: 97	97	1627389952	5
print(string.unpack("I4", "abcd"))  -- expect: 1684234849	5
print(string.unpack(">I4", "abcd"))  -- expect: 1633837924	5
print(string.unpack(">I4", "\0\0a\0"))  -- expect: 24832	5
print(string.unpack("I4I4", "abcdefgh"))  -- expect: 1684234849	1751606885	9
print(string.unpack("I4I4I4", "\0\0\0\0a\0\0\0b\0\0\0rest"))  -- expect: 0	97	98	13
one, two, three, four = string.unpack("I4 I4", "abcdefghij")
print(one, two, three, four)  -- expect: 1684234849	1751606885	9	nil

-- The order of bytes holds until it is changed again, and starts as little-endian in each call.
print(string.unpack("<I4>I4<I4", "abcdabcdabcd"))  -- expect: 1684234849	1633837924	1684234849	13
print(string.unpack(">I4 I4", "abcdabcd"))  -- expect: 1633837924	1633837924	9
print(string.unpack("I4", "abcd") == string.unpack("><I4", "abcd"))  -- expect: true

-- Values are never negative.
print(string.unpack("I4", "ÿÿ"))  -- expect: 3217276867	5
print(string.unpack(">I4", "ÿÿ") > 2147483647)  -- expect: true

-- White space is skipped, but not between I and its width.
print(string.unpack(" \t\n\rI4  I4 ", "abcdabcd"))  -- expect: 1684234849	1684234849	9
print(pcall(string.unpack, "I 4", "abcd"))  -- expect: false	stoi

-- Without fields only the position comes back.
print(string.unpack("", "abcd"))  -- expect: 1
print(string.unpack(" <> ", "abcd", 3))  -- expect: 3
print(string.unpack("", "", 7))  -- expect: 7

-- The position to start at; what is below 1 counts as 1.
print(string.unpack("I4", "....abcd", 5))  -- expect: 1684234849	9
print(string.unpack("I4 I4", "xabcdabcd", 2))  -- expect: 1684234849	1684234849	10
print(string.unpack("I4", "abcd", 1.9), string.unpack("I4", "abcd", 0), string.unpack("I4", "abcd", -5))  -- expect: 1684234849	1684234849	1684234849	5
low, high = -9223372036854775808, 9223372036854775807
print(string.unpack("", "abcd", low), string.unpack("", "abcd", high), string.unpack("", "", 0))  -- expect: 1	9223372036854775807	1
print(string.unpack("", "abcd", tonumber("1e300")), string.unpack("", "abcd", -tonumber("1e300")))  -- expect: 9223372036854775807	1

-- Reading all of a longer buffer.
data = string.rep("\0\0\0a", 1000)
sum, position = 0, 1
while position <= #data do
  value, position = string.unpack(">I4", data, position)
  sum = sum + value
end
print(sum, position)  -- expect: 97000	4001
print(string.unpack(string.rep(">I4", 12), data, 8 + 1))  -- expect: 97	97	97	97	97	97	97	97	97	97	97	97	57
print(pcall(string.unpack, string.rep("I4", 1001), data))  -- expect: false	string.unpack ran past the end of the buffer
print(("I4"):unpack("abcd"))  -- expect: 1684234849	5

-- The width must be 4, however it is written.
print(string.unpack("I04", "abcd"))  -- expect: 1684234849	5
print(pcall(string.unpack, "I2", "abcd"))  -- expect: false	TarvelLua only supports string.unpack I4 fields
print(pcall(string.unpack, "I0", "abcd"))  -- expect: false	TarvelLua only supports string.unpack I4 fields
print(pcall(string.unpack, "I8", "abcdefgh"))  -- expect: false	TarvelLua only supports string.unpack I4 fields
print(pcall(string.unpack, "I44", "abcd"))  -- expect: false	TarvelLua only supports string.unpack I4 fields
print(pcall(string.unpack, "I", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "Ix", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "I-4", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "I99999999999999999999", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "I4294967300", "abcd"))  -- expect: false	stoi

-- Too little data, also when an earlier field could be read.
print(pcall(string.unpack, "I4", "abc"))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4", ""))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4", "abcd", 2))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4I4", "abcdefg"))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4", "abcd", high))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4", "abcd", high - 4))  -- expect: false	string.unpack ran past the end of the buffer

-- Everything else is no format; the width is checked before the data, both before what follows.
print(pcall(string.unpack, "i4", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "4", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "I4,I4", "abcdabcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "I4z", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "=I4", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "\0", "abcd"))  -- expect: false	unsupported string.unpack format
print(pcall(string.unpack, "I4x", "abc"))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I2", ""))  -- expect: false	TarvelLua only supports string.unpack I4 fields

print(pcall(string.unpack, "I4"))  -- expect: false	string.unpack expects between 2 and 3 arguments
print(pcall(string.unpack, "I4", "abcd", 1, 2))  -- expect: false	string.unpack expects between 2 and 3 arguments
print(pcall(string.unpack, 4, "abcd"))  -- expect: false	string.unpack expects a string argument
print(pcall(string.unpack, "I4", 1234))  -- expect: false	string.unpack expects a string argument
print(pcall(string.unpack, "I4", "abcd", "1"))  -- expect: false	string.unpack expects a numeric argument
print(pcall(string.unpack, "x", "abcd", {}))  -- expect: false	string.unpack expects a numeric argument

magic = string.unpack("I4", "abcd")
size = string.unpack("I4", "abc")  -- expect error: string.unpack ran past the end of the buffer
