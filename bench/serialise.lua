-- Nested records written as text and read back by position: the two halves of a data format.
local n = tonumber(arg[1] or 6000)

local function write(value, parts)
  local kind = type(value)
  if kind == "number" then
    parts[#parts + 1] = "i" .. value .. "e"
  elseif kind == "string" then
    parts[#parts + 1] = #value .. ":" .. value
  else
    parts[#parts + 1] = "l"
    for i, item in ipairs(value) do
      write(item, parts)
    end
    parts[#parts + 1] = "e"
  end
end

local function read(text, position)
  local mark = string.sub(text, position, position)
  if mark == "i" then
    local last = string.find(text, "e", position, true)
    return tonumber(string.sub(text, position + 1, last - 1)), last + 1
  elseif mark == "l" then
    local list = {}
    position = position + 1
    while string.sub(text, position, position) ~= "e" do
      list[#list + 1], position = read(text, position)
    end
    return list, position + 1
  end
  local colon = string.find(text, ":", position, true)
  local length = tonumber(string.sub(text, position, colon - 1))
  return string.sub(text, colon + 1, colon + length), colon + length + 1
end

local bytes, sum = 0, 0
for i = 1, n do
  local record = {i, "name" .. i, {"red", "green", {i * 3, i * 7}, ""}, {{}, "end"}}
  local parts = {}
  write(record, parts)
  local text = table.concat(parts)
  local copy = read(text, 1)
  bytes = bytes + #text
  sum = sum + copy[1] + copy[3][3][2] + #copy[2] + #copy[4][2]
end
print(bytes .. " " .. sum)
-- expect: 346499 144088893
-- small: 40
