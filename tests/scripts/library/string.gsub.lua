-- string.gsub(s, pattern, replacement): the new string and the number of replacements.
-- The replacement goes in as it is, rendered as tostring does; there is nothing to be expanded.
print(string.gsub("abc", "(b)", "%1%0%%"))  -- expect: a%1%0%%c	1
function shout(text) return text .. "!" end
print(string.gsub("a b", " ", nil), string.gsub("a", "a", shout))  -- expect: anilb	function: shout	1
-- Long subjects.
local long = string.rep("ab ", 100000)
local text, count = string.gsub(long, "%w+", "x")
print(#text, count)  -- expect: 200000	100000
text, count = string.gsub(long .. string.rep(" ", 20000) .. ".", "%s+$", "")
print(#text, count)  -- expect: 320001	0
