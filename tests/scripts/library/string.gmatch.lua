-- string.gmatch(s, pattern): an iterator over all matches from left to right.
for word in string.gmatch("one two  three", "%a+") do print(word) end
-- expect: one
-- expect: two
-- expect: three
for key, value in string.gmatch("a=1, b=2", "(%w+)=(%w+)") do print(key, value) end
-- expect: a	1
-- expect: b	2
for c in ("a,b"):gmatch(",") do print(c) end  -- expect: ,

-- Without groups the only value is the match; with groups, their captures.
for a, b in string.gmatch("xy", ".") do print(a, b) end
-- expect: x	nil
-- expect: y	nil
for a in string.gmatch("k1 k2", "(%a)(%d)") do print(a) end
-- expect: k
-- expect: k
for a, b, c in string.gmatch("k1", "(%a)(%d)") do print(a, b, c) end  -- expect: k	1	nil

-- No match, no round.
for c in string.gmatch("", "a") do print("never") end
for c in string.gmatch("abc", "%d") do print("never") end

-- An empty match is an item, and the search goes on behind the next byte.
function list(subject, pattern)
  local text = ""
  for match in string.gmatch(subject, pattern) do text = text .. "<" .. match .. ">" end
  return text
end
print(list("abc", ""))  -- expect: <><><><>
print(list("aab", "a*"))  -- expect: <aa><><>
print(list("aab", "a-"))  -- expect: <><><><>
print(list("", ".*"), list("", "^$"))  -- expect: <>	<>
print(list("a b", "%a?"))  -- expect: <a><><b><>

-- Each search sees only what is left, so `^` matches at the start of each.
print(list("aaba", "^a"))  -- expect: <a><a>
print(list("ab", "^"))  -- expect: <><><>
print(list("abab", "b$"))  -- expect: <b>

-- Groups that take no part.
for a, b in string.gmatch("ab", "(a)?(b)?") do print("<" .. a .. "><" .. b .. ">") end
-- expect: <a><b>
-- expect: <><>

-- It is one value, which knows how far it is; all matches are found when it is made.
local words = string.gmatch("a b c", "%a")
print(type(words))  -- expect: iterator
for word in words do
  print(word)
  break
end
-- expect: a
for word in words do print(word) end
-- expect: b
-- expect: c
for word in words do print("never") end

-- Loops over the same subject and pattern do not disturb each other.
local pairsFound = ""
for a in string.gmatch("ab", "%a") do
  for b in string.gmatch("ab", "%a") do pairsFound = pairsFound .. a .. b .. " " end
end
print(pairsFound)  -- expect: aa ab ba bb 

local count = 0
for c in string.gmatch(string.rep("ab ", 20000), "%w+") do count = count + 1 end
print(count)  -- expect: 20000

print(pcall(string.gmatch, "a"))  -- expect: false	string.gmatch expects 2 arguments
print(pcall(string.gmatch, "a", "a", 1))  -- expect: false	string.gmatch expects 2 arguments
print(pcall(string.gmatch, 1, "a"))  -- expect: false	string.gmatch expects a string argument
print(pcall(string.gmatch, "a", nil))  -- expect: false	string.gmatch expects a string argument
-- A pattern is rejected when the iterator is made, also where the subject is empty.
print(pcall(string.gmatch, "", "a)"))
-- expect: false	Mismatched '(' and ')' in regular expression
for c in string.gmatch("a", {}) do end  -- expect error: string.gmatch expects a string argument
