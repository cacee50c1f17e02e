-- A tokeniser that goes byte by byte through a program's text and makes a list of tokens.
local n = tonumber(arg[1] or 600)

local function setOf(bytes)
  local set = {}
  for i = 1, #bytes do
    set[string.sub(bytes, i, i)] = true
  end
  return set
end

local letters = setOf("abcdefghijklmnopqrstuvwxyz_")
local digits = setOf("0123456789")
local blanks = setOf(" \t\n")

local function tokenise(text)
  local tokens, i, size = {}, 1, #text
  while i <= size do
    local byte = string.sub(text, i, i)
    local from = i
    i = i + 1
    if blanks[byte] then
      while i <= size and blanks[string.sub(text, i, i)] do
        i = i + 1
      end
    elseif letters[byte] then
      while i <= size and (letters[string.sub(text, i, i)] or digits[string.sub(text, i, i)]) do
        i = i + 1
      end
      tokens[#tokens + 1] = {kind = "name", text = string.sub(text, from, i - 1)}
    elseif digits[byte] then
      while i <= size and digits[string.sub(text, i, i)] do
        i = i + 1
      end
      tokens[#tokens + 1] = {kind = "number", text = string.sub(text, from, i - 1)}
    else
      tokens[#tokens + 1] = {kind = "sign", text = byte}
    end
  end
  return tokens
end

local pieces = {}
for i = 1, 20 do
  pieces[i] = "let total_" .. i .. " = (count + " .. i * 37 .. ") * price[" .. i .. "];\n"
end
local text = table.concat(pieces)

local counts, length = {name = 0, number = 0, sign = 0}, 0
for round = 1, n do
  for i, token in ipairs(tokenise(text)) do
    counts[token.kind] = counts[token.kind] + 1
    length = length + #token.text
  end
end
print(counts.name .. " " .. counts.number .. " " .. counts.sign .. " " .. length)
-- expect: 48000 24000 96000 396000
-- small: 2
