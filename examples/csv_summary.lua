-- Summarises the columns of a comma-separated file whose first line names them. Fields may not be
-- empty or quoted, nor contain commas.
--
--   tarvellua examples/csv_summary.lua FILE
--
-- args: examples/data/weather.csv
-- expect: 5 rows
-- expect: station: 3 different values
-- expect: days: sum 148, mean 29.6, min 28, max 31
-- expect: rain: sum 370, mean 74, min 47.75, max 110.25
-- expect: low: sum -14, mean -2.8, min -6.75, max 0.5
-- expect: high: sum 51.25, mean 10.25, min 8.5, max 12

local path = arg[1]
if not path then
  io.stderr:write("usage: tarvellua examples/csv_summary.lua FILE\n")
  os.exit(2)
end
local file, reason = io.open(path)
if not file then
  io.stderr:write(reason .. "\n")
  os.exit(1)
end

local function split(line)
  local fields = {}
  for field in line:gmatch("[^,]+") do
    fields[#fields + 1] = field
  end
  return fields
end

-- read("*l") returns the next line without its end, and nil after the last one.
local columns = {}
for i, name in ipairs(split(file:read("*l") or "")) do
  columns[i] = {name = name, values = {}}
end

local rows = 0
local line = file:read("*l")
while line do
  local fields = split(line)
  if #fields ~= #columns then
    error("row " .. rows + 1 .. " has " .. #fields .. " fields instead of " .. #columns)
  end
  rows = rows + 1
  for i, column in ipairs(columns) do
    -- What is not a number stays the text it was.
    column.values[rows] = tonumber(fields[i]) or fields[i]
  end
  line = file:read("*l")
end
file:close()

local function isNumeric(values)
  for i, value in ipairs(values) do
    if type(value) ~= "number" then
      return false
    end
  end
  return #values > 0
end

local function countDifferent(values)
  local seen, count = {}, 0
  for i, value in ipairs(values) do
    if not seen[value] then
      seen[value] = true
      count = count + 1
    end
  end
  return count
end

local function describeNumbers(values)
  local sum, lowest, highest = 0, values[1], values[1]
  for i, value in ipairs(values) do
    sum = sum + value
    lowest = math.min(lowest, value)
    highest = math.max(highest, value)
  end
  return string.format("sum %s, mean %s, min %s, max %s", sum, sum / #values, lowest, highest)
end

print(rows .. " rows")
for i, column in ipairs(columns) do
  if isNumeric(column.values) then
    print(column.name .. ": " .. describeNumbers(column.values))
  else
    print(column.name .. ": " .. countDifferent(column.values) .. " different values")
  end
end
