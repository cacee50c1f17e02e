-- Text that grows piece by piece in a field of a record and in an element of a list.
local n = tonumber(arg[1] or 120)

local length, letters = 0, {"a", "b", "c"}
for round = 1, n do
  local page = {title = "page", text = ""}
  local columns = {"", ""}
  for i = 1, 2500 do
    page.text = page.text .. "<" .. i % 10 .. ">"
    columns[i % 2 + 1] = columns[i % 2 + 1] .. letters[i % 3 + 1]
  end
  length = length + #page.text + #columns[1] * 2 + #columns[2]
end
print(length)
-- expect: 1350000
-- small: 1
