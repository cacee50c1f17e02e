-- string.match(s, pattern [, init]); what is found: tests/fuzz/patterns.cpp.
-- Only the latest patterns are kept, and none is taken for another.
for i = 1, 1400 do
  local text = "n" .. i % 700
  if string.match("<" .. text .. ">", "(" .. text .. ")%W") ~= text then print("confused", i) end
end
local long = string.rep("a", 1000000)
print(string.match(long, "^([^@]*)$") == long, string.match(" " .. long .. " ", "^%s*(.-)%s*$") == long)  -- expect: true	true
