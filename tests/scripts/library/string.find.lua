-- string.find(s, pattern [, init [, plain]]): first and last position, then the captures; or nil.
print(string.find("abc", "x"), string.find("a.b", "."), string.find("a.b", "%."))  -- expect: nil	1	2	2
print(string.find("aab", "^a+"), string.find("baa", "^a+"), ("a\0b"):find("\0b"))  -- expect: 1	nil	2	3

-- The position to start from; `^` matches there. Positions before the subject are its start, a nil is none.
print(string.find("abcabc", "^c", 3.9), string.find("abc", "b", nil))  -- expect: 3	2	2
print(string.find("abc", "", 4), string.find("abc", "", 5), string.find("abc", "c$", 4))  -- expect: 4	nil	nil
local huge = 10000000000 * 10000000000 * 10000000000
print(string.find("abc", "", huge), string.find("abc", "c", -huge))  -- expect: nil	3	3
print(string.find("abab", "b", 0), string.find("abab", "b", -9223372036854775807))  -- expect: 2	2	2
-- Hundreds of optional groups need little of the stack, and are no reason to refuse a pattern.
print(string.find("ab", string.rep("(a)?", 260) .. "b") == 1)  -- expect: true

-- Plain search.
print(string.find("a.b", ".", 1, true), string.find("a.b", ".", 1, false))  -- expect: 2	1	1
print(string.find("a.b", ".", 1, 0), string.find("(", "%(", 1, true))  -- expect: 2	nil
print(string.find("abab", "ab", 2, true), string.find("ab", "", 4, true))  -- expect: 3	nil

-- A group that takes no part gives an empty string, and so does a group around nothing.
local first, last, a, b, c = string.find("xyz", "()(y)(q?)")
print(first, last, "<" .. a .. "><" .. b .. "><" .. c .. ">")  -- expect: 2	2	<><y><>

-- What the library of regular expressions rejects is an ordinary error, each time.
for i = 1, 2 do print(pcall(string.find, "a", "(")) end
-- expect: false	Mismatched '(' and ')' in regular expression
-- expect: false	Mismatched '(' and ')' in regular expression
print(pcall(string.find, "a", "[z-a]"))  -- expect: false	Invalid range in bracket expression.
print(pcall(string.find, "a", "(?x)"))  -- expect: false	Invalid '(?...)' zero-width assertion in regular expression
