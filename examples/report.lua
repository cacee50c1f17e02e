-- Writes a report into a file, adds a line to it, and reads it back.
--
--   tarvellua examples/report.lua [FILE]
--
-- Without a name the file is report.txt in the current directory.
--
-- args: {tmp}/report.txt
-- expect: 1: Catch of the week
-- expect: 2: =================
-- expect: 3: cod           120  24%
-- expect: 4: herring       310  62%
-- expect: 5: mackerel       70  14%
-- expect: 6: total         500
-- expect: 7: checked by the harbour master
-- expect: 153 bytes in all

local path = arg[1] or "report.txt"
local catch = {
  {fish = "herring", crates = 310},
  {fish = "cod", crates = 120},
  {fish = "mackerel", crates = 70},
}

-- Opens the file or ends the program; see wordcount.lua.
local function open(mode)
  local file, reason = io.open(path, mode)
  if not file then
    io.stderr:write(reason .. "\n")
    os.exit(1)
  end
  return file
end

-- string.format knows no widths, so columns are filled up with blanks by hand.
local function left(value, width)
  local text = tostring(value)
  return text .. string.rep(" ", width - #text)
end

local function right(value, width)
  local text = tostring(value)
  return string.rep(" ", width - #text) .. text
end

table.sort(catch, function(a, b)
  return a.fish < b.fish
end)
local total = 0
for i, entry in ipairs(catch) do
  total = total + entry.crates
end

-- Mode "w" starts an empty file. write takes any number of values and returns the file, so that
-- calls can be chained.
local title = "Catch of the week"
local file = open("w")
file:write(title, "\n"):write(string.rep("=", #title), "\n")
for i, entry in ipairs(catch) do
  local share = math.floor(entry.crates * 100 / total + 0.5)
  file:write(left(entry.fish, 12), right(entry.crates, 5), right(share, 4), "%\n")
end
file:write(left("total", 12), right(total, 5), "\n")
file:close()

-- Mode "a" keeps what is there and writes behind it.
file = open("a")
file:write("checked by the harbour master\n")
file:close()

-- "r", for reading, is also what io.open assumes when no mode is given.
file = open("r")
local number = 0
local line = file:read("*l")
while line do
  number = number + 1
  print(number .. ": " .. line)
  line = file:read("*l")
end
print(file:seek("end") .. " bytes in all")
file:close()
