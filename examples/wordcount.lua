-- Counts the words of a text file, and its lines but for empty ones, and names the most frequent
-- words.
--
--   tarvellua examples/wordcount.lua FILE
--
-- args: examples/data/harbour.txt
-- expect: 5 lines, 63 words, 41 different ones
-- expect: 13 the
-- expect: 3 is
-- expect: 2 and
-- expect: 2 boats
-- expect: 2 buys

local path = arg[1]
if not path then
  io.stderr:write("usage: tarvellua examples/wordcount.lua FILE\n")
  os.exit(2)
end

-- io.open raises no error: it returns nil and the reason.
local file, reason = io.open(path)
if not file then
  io.stderr:write(reason .. "\n")
  os.exit(1)
end
local text = file:read("*a")
file:close()

-- The library has no function for lower case; a table from capitals to small letters does it.
local capitals = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
local smalls = "abcdefghijklmnopqrstuvwxyz"
local smallOf = {}
for i = 1, #capitals do
  smallOf[capitals:sub(i, i)] = smalls:sub(i, i)
end

local function lowercase(word)
  local letters = {}
  for i = 1, #word do
    local letter = word:sub(i, i)
    letters[i] = smallOf[letter] or letter
  end
  return table.concat(letters)
end

-- A pattern describes text: "[^\n]+" is a run of anything but line feeds, "%a+" a run of letters.
-- gmatch goes through all the matches.
local lines, words = 0, 0
local counts = {}
for line in text:gmatch("[^\n]+") do
  lines = lines + 1
  for word in line:gmatch("%a+") do
    local key = lowercase(word)
    words = words + 1
    counts[key] = (counts[key] or 0) + 1
  end
end

-- A table with named fields has no order, so the counts move into a list before they are sorted.
local ranking = {}
for word, count in pairs(counts) do
  ranking[#ranking + 1] = {word = word, count = count}
end
table.sort(ranking, function(a, b)
  if a.count ~= b.count then
    return a.count > b.count
  end
  return a.word < b.word
end)

print(lines .. " lines, " .. words .. " words, " .. #ranking .. " different ones")
for i = 1, math.min(5, #ranking) do
  print(ranking[i].count .. " " .. ranking[i].word)
end
