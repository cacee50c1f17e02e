-- string.find(s, pattern [, init [, plain]]): first and last position, then the captures; or nil.
print(string.find("hello", "l"))  -- expect: 3	3
print(string.find("hello", "ll"))  -- expect: 3	4
print(string.find("abc", "x"))  -- expect: nil
print(string.find("key=val", "(%w+)=(%w+)"))  -- expect: 1	7	key	val
print(("a1b22"):find("%d%d"))  -- expect: 4	5

-- Magic bytes and their escapes.
print(string.find("a.b", "%."))  -- expect: 2	2
print(string.find("a.b", "."))  -- expect: 1	1
print(string.find("50%", "%%"))  -- expect: 3	3
print(string.find("a$b", "%$"), string.find("a\\b", "%\\"))  -- expect: 2	2	2
print(string.find("x-y", "%-"), string.find("f(x)", "%(x%)"))  -- expect: 2	2	4
print(string.find("a{2}|b", "{2}|"))  -- expect: 2	5
print(string.find("50%", "0%"))  -- expect: 2	3
print(string.find("a[b", "[b"))  -- expect: 2	3
print(string.find("a\0b", "\0b"))  -- expect: 2	3

-- Text without magic bytes is looked for as it is.
print(string.find("aaa", "", 2), string.find("", ""))  -- expect: 2	1	0
print(string.find("", "a"), string.find("a", "aa"))  -- expect: nil	nil

-- Anchors stand wherever they are written, and what they cannot match there they do not.
print(string.find("aab", "^a+"), string.find("baa", "^a+"))  -- expect: 1	nil
print(string.find("aab", "b$"), string.find("aba", "b$"))  -- expect: 3	nil
print(string.find("a^b", "a^b"), string.find("a$b", "a$b"))  -- expect: nil	nil
print(string.find("abc", "^"), string.find("abc", "$"))  -- expect: 1	4	3
print(string.find("", "^$"))  -- expect: 1	0

-- The position to start from. `^` matches there.
print(string.find("abcabc", "b", 3))  -- expect: 5	5
print(string.find("abcabc", "^c", 3))  -- expect: 3	3
print(string.find("aXbX", "X", 2.9))  -- expect: 2	2
print(string.find("abc", "", 4), string.find("abc", "", 5))  -- expect: 4	nil
print(string.find("abc", "", 10), string.find("abc", "c$", 4))  -- expect: nil	nil
print(string.find("abc", "a", 9223372036854775807))  -- expect: nil
local huge = 10000000000 * 10000000000 * 10000000000
print(string.find("abc", "", huge), string.find("abc", "c", -huge))  -- expect: nil	3	3

-- Positions before the subject are its start; they are not counted from the end.
print(string.find("abc", "b", -1))  -- expect: 2	2
print(string.find("abab", "b", 0), string.find("abab", "b", -9223372036854775807))  -- expect: 2	2	2

-- A nil position is as good as none.
print(string.find("abc", "b", nil), string.find("a.c", ".", nil, true))  -- expect: 2	2	2

-- Plain search.
print(string.find("a.b", ".", 1, true))  -- expect: 2	2
print(string.find("a.b", ".", 1, false))  -- expect: 1	1
print(string.find("a.b", ".", 1, nil))  -- expect: 1	1
print(string.find("a.b", ".", 1, 0), string.find("a.b", ".", 1, ""))  -- expect: 2	2	2
print(string.find("a(b", "(", 1, true), string.find("(", "%(", 1, true))  -- expect: 2	nil
print(string.find("[a]", "[a]", 1, true), string.find("ab", "", 3, true))  -- expect: 1	3	2

-- A group that takes no part gives an empty string, and so does a group around nothing.
print(string.find("b", "(a)?b"))  -- expect: 1	1	
local first, last, a, b, c = string.find("xyz", "()(y)(q?)")
print(first, last, "<" .. a .. "><" .. b .. "><" .. c .. ">")  -- expect: 2	2	<><y><>

-- The point matches all bytes but line ends; other bytes are single ones, whatever they encode.
print(string.find("\n\rx", "."), string.find("\n", "."))  -- expect: 3	nil
print(string.find("a\0b", ".b"), string.find("ä", "."))  -- expect: 2	1	1
print(string.find("aä", "ä"), string.find("ä", "ä."), string.find("ä", "[^a]$"))
-- expect: 2	nil	2	2

-- What the library of regular expressions rejects is an ordinary error, each time.
for i = 1, 2 do print(pcall(string.find, "a", "(")) end
-- expect: false	Mismatched '(' and ')' in regular expression
-- expect: false	Mismatched '(' and ')' in regular expression
print(pcall(string.find, "a", "a)"))
-- expect: false	Mismatched '(' and ')' in regular expression
print(pcall(string.find, "a", "[z-a]"))
-- expect: false	Invalid range in bracket expression.
local ok = pcall(string.find, "a", "*")
print(ok)  -- expect: false
print(pcall(string.find, "a", "(?x)"))
-- expect: false	Invalid '(?...)' zero-width assertion in regular expression

-- Counts first, then kinds from left to right.
print(pcall(string.find))  -- expect: false	string.find expects between 2 and 4 arguments
print(pcall(string.find, "a", "b", 1, true, 5))
-- expect: false	string.find expects between 2 and 4 arguments
print(pcall(string.find, 12, 1, "x"))  -- expect: false	string.find expects a string argument
print(pcall(string.find, "12", 1, "x"))  -- expect: false	string.find expects a string argument
print(pcall(string.find, "a", "(", "1"))  -- expect: false	string.find expects a numeric argument
print(pcall(string.find, "a", "a", true))  -- expect: false	string.find expects a numeric argument
print(pcall(string.find, nil, "a"))  -- expect: false	string.find expects a string argument
string.find("a", "a", {})  -- expect error: string.find expects a numeric argument
