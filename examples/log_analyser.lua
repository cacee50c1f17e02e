-- Reads a server's log: how many lines of each level, what went wrong, and how long requests took.
--
--   tarvellua examples/log_analyser.lua FILE
--
-- args: examples/data/server.log
-- expect: INFO 5
-- expect: WARNING 1
-- expect: ERROR 2
-- expect: unreadable 1
-- expect: 08:01:17 disk is full (code 28)
-- expect: 08:01:18 request failed (id 104)
-- expect: /home: 3 in all, mean 10.3333 ms
-- expect: /search: 2 in all, mean 210.5 ms
-- expect: /upload: 1 in all, mean 1250 ms
-- expect: slowest: request 104 with 1250 ms

local path = arg[1]
if not path then
  io.stderr:write("usage: tarvellua examples/log_analyser.lua FILE\n")
  os.exit(2)
end
local file, reason = io.open(path)
if not file then
  io.stderr:write(reason .. "\n")
  os.exit(1)
end
local text = file:read("*a")
file:close()

-- Splits "2024-03-01 08:00:01 INFO request id=101 took=12" into a record. In a pattern %d is a
-- digit, %a a letter, %S anything but white space; what stands in parentheses is returned. A hyphen
-- has a meaning of its own, so a literal one is written %-.
local function parseLine(line)
  local day, time, level, rest =
      line:match("^(%d+%-%d+%-%d+) (%d+:%d+:%d+) (%a+) (.+)$")
  if not day then
    return nil
  end
  local entry = {day = day, time = time, level = level, fields = {}}
  for key, value in rest:gmatch("(%a+)=(%S+)") do
    entry.fields[key] = value
  end
  -- The message is what stands before the first field.
  entry.message = rest:match("^([%a ]+) %a+=") or rest
  return entry
end

local levels = {}
local failures = {}
local requests = {}  -- by path
local slowest

local function countRequest(fields)
  local took = tonumber(fields.took) or 0
  local target = fields.path or "unknown"
  local request = requests[target] or {count = 0, total = 0}
  request.count = request.count + 1
  request.total = request.total + took
  requests[target] = request
  if not slowest or took > slowest.took then
    slowest = {took = took, id = fields.id or "unknown"}
  end
end

local unreadable = 0
for line in text:gmatch("[^\n]+") do
  local entry = parseLine(line)
  if not entry then
    unreadable = unreadable + 1
  else
    levels[entry.level] = (levels[entry.level] or 0) + 1
    if entry.level == "ERROR" then
      failures[#failures + 1] = entry
    end
    if entry.fields.took then
      countRequest(entry.fields)
    end
  end
end

for i, level in ipairs({"INFO", "WARNING", "ERROR"}) do
  print(level .. " " .. (levels[level] or 0))
end
print("unreadable " .. unreadable)

for i, entry in ipairs(failures) do
  local detail = ""
  for j, key in ipairs({"code", "id"}) do
    if entry.fields[key] then
      detail = " (" .. key .. " " .. entry.fields[key] .. ")"
    end
  end
  print(entry.time .. " " .. entry.message .. detail)
end

local paths = {}
for name in pairs(requests) do
  paths[#paths + 1] = name
end
table.sort(paths)
for i, name in ipairs(paths) do
  local request = requests[name]
  local mean = request.total / request.count
  print(name .. ": " .. request.count .. " in all, mean " .. mean .. " ms")
end
if slowest then
  print("slowest: request " .. slowest.id .. " with " .. slowest.took .. " ms")
end
