-- string.match(s, pattern [, init]): the captures, or the whole match where there are no groups.
print(string.match("<a><b>", "<.->"), string.match("ab", "((a)(b))"))  -- expect: <a>	ab	a	b

-- A group in a repetition keeps its last round; lookaheads come through.
print(string.match("abc", "(%w)*"), string.match("ab ac", "a(?=c)."))  -- expect: c	ac
print(string.match("abc", "^b.", 2), string.match("abc", "c?", 4) == "")  -- expect: bc	true

-- Only the latest patterns are kept, and none is taken for another.
for i = 1, 1400 do
  local text = "n" .. i % 700
  if string.match("<" .. text .. ">", "(" .. text .. ")%W") ~= text then print("confused", i) end
end
local long = string.rep("a", 1000000)
print(string.match(long, "^([^@]*)$") == long, string.match(" " .. long .. " ", "^%s*(.-)%s*$") == long)  -- expect: true	true
