-- Scanning text one character at a time, as a hand-written tokeniser does.
local n = tonumber(arg[1] or 100)

local pieces = {"let ", "x", "(", "12", ")", " + ", "[", "name", "]", " * ", "375", "; "}

local lines = {}
local seed = 42
for i = 1, 400 do
  local line = ""
  for j = 1, 20 do
    seed = (seed * 16807) % 2147483647
    line = line .. pieces[seed % 12 + 1]
  end
  lines[i] = line
end

local letters, digits, blanks, others, deepest = 0, 0, 0, 0, 0
for round = 1, n do
  for number, line in ipairs(lines) do
    local depth = 0
    for i = 1, #line do
      local c = string.sub(line, i, i)
      if c >= "a" and c <= "z" then
        letters = letters + 1
      elseif c >= "0" and c <= "9" then
        digits = digits + 1
      elseif c == " " then
        blanks = blanks + 1
      elseif c == "(" then
        depth = depth + 1
        if depth > deepest then
          deepest = depth
        end
      elseif c == ")" then
        depth = depth - 1
      else
        others = others + 1
      end
    end
  end
end
print(letters .. " " .. digits .. " " .. blanks .. " " .. others .. " " .. deepest)
-- expect: 541800 336700 399400 327200 5
-- small: 1
