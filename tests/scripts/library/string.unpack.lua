-- string.unpack(fmt, data, pos): unsigned 32-bit fields, then the position behind the last one.
-- The order of bytes holds until it is changed again, and starts as little-endian in each call.
print(string.unpack("I4>I4<I4", "abcdabcdabcd"))  -- expect: 1684234849	1633837924	1684234849	13
print(string.unpack("I04", "ÿÿ"))  -- expect: 3217276867	5
-- White space is skipped, but not between I and its width. Without fields only the position comes back.
print(string.unpack(" \t\n\rI4  <> ", "....abcd", 5))  -- expect: 1684234849	9
-- What is below 1 counts as 1.
print(string.unpack("I4", "abcd", 1.9), string.unpack("I4", "abcd", -5))  -- expect: 1684234849	1684234849	5
print(string.unpack("", "", tonumber("1e300")), string.unpack("", "", 0))  -- expect: 9223372036854775807	1

-- The width must be 4, however it is written; it is checked before the data, both before what follows.
print(pcall(string.unpack, "I 4", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "I99999999999999999999", "abcd"))  -- expect: false	stoi
print(pcall(string.unpack, "I4I4", "abcdefg"))  -- expect: false	string.unpack ran past the end of the buffer
print(pcall(string.unpack, "I4", "abcd", 9223372036854775807) == false)  -- expect: true
print(pcall(string.unpack, "I4z", "abcd"))  -- expect: false	unsupported string.unpack format
string.unpack("I", "abcd")
-- expect error bare: stoi
