-- string.gmatch(s, pattern): an iterator over all matches from left to right.
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

-- What happens between two steps does not matter: other searches, so many that the pattern's own form is forgotten,
-- other values of the variables. The same where groups are repeated.
function interrupted(subject, pattern)
  local text = ""
  for first, second in string.gmatch(subject, pattern) do
    text = text .. "<" .. first .. "," .. tostring(second) .. ">"
    subject, pattern = subject .. "!", "x"
    for i = 1, 300 do string.find("a b", "b" .. i .. "?") end
  end
  return text
end
print(interrupted("a=1, b=2", "(%w)=(%w)"), interrupted("ab b", "(a)?(b)"))  -- expect: <a,1><b,2>	<a,b><,b>
print(interrupted("a b", "%a+"), interrupted("a, b", ", "), interrupted("ab", "(?:a)"))  -- expect: <a,nil><b,nil>	<, ,nil>	<a,nil>
local count = 0
for long in string.gmatch(string.rep("x ", 3000), "x" .. string.rep("[y]?", 400) .. " ") do count = count + 1 end
print(count)  -- expect: 3000
-- A pattern is rejected when the iterator is made, also where the subject is empty.
print(pcall(string.gmatch, "", "a)"))  -- expect: false	Mismatched '(' and ')' in regular expression
