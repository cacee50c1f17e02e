-- string.gsub(s, pattern, replacement): the new string and the number of replacements.
print(string.gsub("hello world", "o", "0"))  -- expect: hell0 w0rld	2
print(string.gsub("abc", "x", "y"))  -- expect: abc	0
print(string.gsub("", "x", "y"))  -- expect: 	0
print(string.gsub("2024-05-17", "%d+", "#"))  -- expect: #-#-#	3
print(("a,b,c"):gsub(",", ", "))  -- expect: a, b, c	2
print(string.gsub("aaa", "a", ""))  -- expect: 	3
print(string.gsub("a.b.c", "%.", "/"))  -- expect: a/b/c	2
print(string.gsub("a\0b\0", "\0", "0"))  -- expect: a0b0	2

-- The replacement goes in as it is; there is nothing to be expanded.
print(string.gsub("abc", "(b)", "%1"))  -- expect: a%1c	1
print(string.gsub("abc", "b", "%0%%"))  -- expect: a%0%%c	1
print(string.gsub("abc", "b", "[.]*"))  -- expect: a[.]*c	1

-- Any kind is rendered as tostring does; functions and tables are not asked.
print(string.gsub("a b", " ", 1), string.gsub("a b", " ", 2.5))  -- expect: a1b	a2.5b	1
print(string.gsub("a b", " ", nil), string.gsub("a b", " ", true))  -- expect: anilb	atrueb	1
function shout(text) return text .. "!" end
print(string.gsub("a", "a", shout))  -- expect: function: shout	1
local map = {a = "never"}
print(string.gsub("a", "a", map) == tostring(map))  -- expect: true

-- An empty match is replaced too, then one byte is copied.
print(string.gsub("abc", "", "-"))  -- expect: -a-b-c-	4
print(string.gsub("", "", "-"))  -- expect: -	1
print(string.gsub("abc", "b*", "-"))  -- expect: -a--c-	4
print(string.gsub("abc", "x*", "-"))  -- expect: -a-b-c-	4
print(string.gsub("hello", "l-", "."))  -- expect: .h.e.l.l.o.	6
print(string.gsub("abc", "$", "!"))  -- expect: abc!	1

-- Each search sees only what is left, so `^` matches at the start of each.
print(string.gsub("aaba", "^a", "x"))  -- expect: xxba	2
print(string.gsub("abc", "^", "-"))  -- expect: -a-b-c-	4
print(string.gsub("  trimmed  ", "^%s+", ""))  -- expect: trimmed  	1
print(string.gsub("  trimmed  ", "%s+$", "") .. "|")  -- expect:   trimmed|
print(string.gsub("abab", "b$", "x"))  -- expect: abax	1

-- There is no limit to be given.
print(pcall(string.gsub, "aa", "a", "b", 1))  -- expect: false	string.gsub expects 3 arguments

-- Long subjects.
local long = string.rep("ab ", 100000)
local text, count = string.gsub(long, "%w+", "x")
print(#text, count)  -- expect: 200000	100000
text, count = string.gsub(long, "b", "<&>")
print(#text, count)  -- expect: 500000	100000
text, count = string.gsub(long .. string.rep(" ", 20000) .. ".", "%s+$", "")
print(#text, count)  -- expect: 320001	0

print(pcall(string.gsub, "a", "b"))  -- expect: false	string.gsub expects 3 arguments
print(pcall(string.gsub, 1, "a", "b"))  -- expect: false	string.gsub expects a string argument
print(pcall(string.gsub, "a", {}, "b"))  -- expect: false	string.gsub expects a string argument
print(pcall(string.gsub, "", "(", ""))
-- expect: false	Mismatched '(' and ')' in regular expression
string.gsub("a", true, "")  -- expect error: string.gsub expects a string argument
