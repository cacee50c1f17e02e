-- string.gmatch(s, pattern): an iterator over all matches from left to right, which are found when it is made.
local words = string.gmatch("a=1, b=2, c=3", "(%w+)=(%w+)")
for key, value, nothing in words do
  print(key, value, nothing)
  if key == "b" then break end
end
-- expect: a	1	nil
-- expect: b	2	nil
for key in words do print(key) end  -- expect: c
for key in words do print("never") end
print(type(words))  -- expect: iterator

-- An empty match is an item, and the search goes on behind the next byte. Each search sees only what is left, so `^`
-- matches at the start of each.
function list(subject, pattern)
  local text = ""
  for match in string.gmatch(subject, pattern) do text = text .. "<" .. match .. ">" end
  return text
end
print(list("abc", ""), list("a b", "%a?"), list("aaba", "^a"))  -- expect: <><><><>	<a><><b><>	<a><a>
-- A pattern is rejected when the iterator is made, also where the subject is empty.
print(pcall(string.gmatch, "", "a)"))  -- expect: false	Mismatched '(' and ')' in regular expression
