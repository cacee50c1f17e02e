-- string.find(s, pattern [, init [, plain]]): how arguments are taken. What is found: tests/fuzz/patterns.cpp.
-- The position to start from; a nil is none.
print(string.find("abcabc", "^c", 3.9), string.find("abc", "b", nil))  -- expect: 3	2	2
local huge = 10000000000 * 10000000000 * 10000000000
print(string.find("abc", "", huge), string.find("abc", "c", -huge))  -- expect: nil	3	3
-- Hundreds of optional groups need little of the stack, and are no reason to refuse a pattern.
print(string.find("ab", string.rep("(a)?", 260) .. "b") == 1)  -- expect: true

-- Plain search.
print(string.find("a.b", ".", 1, true), string.find("a.b", ".", 1, false))  -- expect: 2	1	1
print(string.find("a.b", ".", 1, 0), string.find("(", "%(", 1, true))  -- expect: 2	nil
print(string.find("abab", "ab", 2, true), string.find("ab", "", 4, true))  -- expect: 3	nil

-- What the library of regular expressions rejects is an ordinary error, each time.
for i = 1, 2 do print(pcall(string.find, "a", "(")) end
-- expect: false	Mismatched '(' and ')' in regular expression
-- expect: false	Mismatched '(' and ')' in regular expression
