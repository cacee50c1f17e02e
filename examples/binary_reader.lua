-- Writes a small binary file, then reads it back with string.unpack.
--
--   tarvellua examples/binary_reader.lua [FILE]
--
-- Without a name the file is gauge.bin in the current directory. Its layout, numbers being unsigned
-- and of four bytes, the last one with its highest byte first, all others with their lowest:
--
--   offset 0    the letters MEAS
--   offset 4    where the records begin
--   offset 8    the title, filled up with zero bytes
--   records     a gauge's number and its value, until four bytes before the end
--   the end     the sum of the values
--
-- args: {tmp}/gauge.bin
-- expect: MEAS file "Harbour gauges", records at 32
-- expect: gauge 65: 2336
-- expect: gauge 66: 33
-- expect: gauge 67: 34
-- expect: sum 2403, as stated
-- expect: a cut file is refused: string.unpack ran past the end of the buffer

local path = arg[1] or "gauge.bin"

local function open(mode)
  local file, reason = io.open(path, mode)
  if not file then
    io.stderr:write(reason .. "\n")
    os.exit(1)
  end
  return file
end

-- Strings hold any bytes: "\0" is a zero byte, a blank is 32, "\t" is 9 and "c" is 99. So " \t\0\0"
-- is 32 + 9 * 256 = 2336. The "b" in the mode keeps the bytes as they are on every system.
local title = "Harbour gauges"
local file = open("wb")
file:write("MEAS", " \0\0\0", title, string.rep("\0", 24 - #title))
file:write("A\0\0\0", " \t\0\0")
file:write("B\0\0\0", "!\0\0\0")
file:write("C\0\0\0", '"\0\0\0')
file:write("\0\0\tc")
file:close()

file = open("rb")
local magic = file:read(4)
if magic ~= "MEAS" then
  error(path .. " is no gauge file")
end
-- In a format "<" stands for lowest byte first, ">" for highest byte first, "I4" for one number.
local start = string.unpack("<I4", file:read(4))
local name = file:read(24):match("[%w ]+")
print(magic .. " file \"" .. name .. "\", records at " .. start)

file:seek("set", start)
local data = file:read("*a")
file:close()

local sum = 0
for position = 1, #data - 11, 8 do
  local gauge, value = string.unpack("<I4 I4", data, position)
  sum = sum + value
  print("gauge " .. gauge .. ": " .. value)
end
local stated = string.unpack(">I4", data, #data - 3)
print("sum " .. sum .. (sum == stated and ", as stated" or ", but the file states " .. stated))

local ok, message = pcall(string.unpack, "<I4", data:sub(1, 3))
print("a cut file is refused: " .. message)
