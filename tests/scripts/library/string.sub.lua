-- string.sub(s, i, j): the bytes i to j, both counted from 1 or, if negative, from the end.
print(string.sub("hello", 2, 4), string.sub("hello", -3), string.sub("hello", 0))  -- expect: ell	llo	hello
print(string.sub("hello", 2, 100), string.sub("hello", -100, 2), string.sub("hello", -100, 100))  -- expect: ello	he	hello
print("[" .. string.sub("hello", 4, 2) .. string.sub("hello", 6) .. string.sub("hello", 1, 0) .. "]")  -- expect: []
print("[" .. string.sub("", 1, 5) .. string.sub("", 0) .. string.sub("", -1, -1) .. "]")  -- expect: []

-- A nil for j is no j; floats are truncated toward zero.
print(string.sub("hello", 3, nil), string.sub("hello", 2.9, 4.9), string.sub("hello", -2.9))  -- expect: llo	ell	lo
print(string.sub("hello", 0.9, -0.9) == "", string.sub("hello", 1 / 3), string.sub("hello", -0.5, 2))  -- expect: true	hello	he

-- The limits of integers, and floats beyond them.
low, high = -9223372036854775808, 9223372036854775807
print(string.sub("hello", low, high), #string.sub("hello", high), #string.sub("hello", low, low))  -- expect: hello	0	0
huge = tonumber("1e300")
print(string.sub("hello", -huge, huge), #string.sub("hello", huge, -huge))  -- expect: hello	0
infinity = huge * huge
nan = infinity / infinity
print(string.sub("hello", -infinity, infinity), string.sub("hello", nan, 2), #string.sub("hello", 1, nan))  -- expect: hello	he	0

-- Bytes, not characters: a zero byte and the halves of a longer character are bytes like any other.
text = "a\0b"
print(#string.sub(text, 2, 2), string.sub(text, 2, 2) == "\0", string.sub(text, 2) == "\0b")  -- expect: 1	true	true

-- Short results are shared, which nothing may show: appending to one leaves the others alone.
first = string.sub("abc", 2, 2)
second = string.sub("xbx", 2, 2)
first = first .. "!"
print(first, second, string.sub("b", 1, 1), "b")  -- expect: b!	b	b	b
whole = "whole"
part = string.sub(whole, 1, 5)
part = part .. "s"
print(whole, part)  -- expect: whole	wholes

-- As a method.
print(("hello"):sub(2, 3), whole:sub(-2), #whole:sub(9), ("x"):sub(1):sub(1))  -- expect: el	le	0	x

print(pcall(string.sub, "abc"))  -- expect: false	string.sub expects between 2 and 3 arguments
print(pcall(string.sub, 123, 1))  -- expect: false	string.sub expects a string argument
print(pcall(string.sub, "abc", nil))  -- expect: false	string.sub expects a numeric argument
print(pcall(string.sub, "abc", 1, "2"))  -- expect: false	string.sub expects a numeric argument

for i = 1, 3 do
  local part =
    string.sub("abc", i, {})  -- expect error: string.sub expects a numeric argument
end
