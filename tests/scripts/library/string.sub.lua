-- string.sub(s, i, j): the bytes i to j, both counted from 1 or, if negative, from the end.
print(string.sub("hello", 2, 4), string.sub("hello", -100, 2), ("hello"):sub(-2))  -- expect: ell	he	lo
-- A nil for j is no j; floats are truncated toward zero. A zero byte is a byte like any other.
print(string.sub("hello", 3, nil), string.sub("hello", 2.9, 4.9), string.sub("a\0b", 2) == "\0b")  -- expect: llo	ell	true
-- The limits of integers, and floats beyond them.
low, high, huge = -9223372036854775808, 9223372036854775807, tonumber("1e300")
print(string.sub("hello", low, high), #string.sub("hello", high), #string.sub("hello", 4, 2))  -- expect: hello	0	0
print(string.sub("hello", -huge, huge), #string.sub("a", 1, huge * huge / (huge * huge)))  -- expect: hello	0

-- Results are shared, which nothing may show: appending to one leaves the others alone.
first, second, whole = string.sub("abc", 2, 2), string.sub("xbx", 2, 2), "whole"
first = first .. "!"
part = string.sub(whole, 1, 5)
part = part .. "s"
print(first, second, string.sub("b", 1, 1), whole, part)  -- expect: b!	b	b	whole	wholes
