-- Building strings: 500,000 pieces appended to a table and joined, then 200,000 appends with `..`.
local n = tonumber(arg[1] or 200)

local pieces = {}
for i = 1, n * 2500 do
  pieces[#pieces + 1] = "item" .. i % 1000
end
local joined = table.concat(pieces, ",")

local length, last = 0, ""
for round = 1, n do
  local text = ""
  for i = 1, 1000 do
    text = text .. "<" .. i % 10 .. ">"
  end
  length = length + #text
  last = text
end
print(#joined .. " " .. string.sub(joined, -16) .. " " .. length .. " " .. string.sub(last, -9))
-- expect: 3944999 98,item999,item0 600000 <8><9><0>
-- small: 1
