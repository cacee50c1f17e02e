-- Patterns over many short log lines: plain text, anchors, captures, every match, replacement.
local n = tonumber(arg[1] or 20000)

local levels = {"info", "debug", "warning", "error"}
local parts = {"disk", "network", "session", "cache", "worker"}

local lines = {}
local seed = 42
for i = 1, n do
  seed = (seed * 16807) % 2147483647
  lines[i] = "2024-05-" .. (10 + i % 20) .. " 10:" .. (10 + seed % 50) .. " " ..
      levels[seed % 4 + 1] .. " " .. parts[seed % 5 + 1] .. ": request id=" .. seed ..
      " took=" .. (seed % 900) .. " ms, " .. (i % 3) .. " retries"
end

local errors, days, times, fields, words, masked = 0, 0, 0, 0, 0, 0
for i, line in ipairs(lines) do
  if string.find(line, " error ") then
    errors = errors + 1
  end
  local year, month, day = string.match(line, "^(%d+)%-(%d+)%-(%d+)")
  days = days + tonumber(day)
  times = times + tonumber(string.match(line, "took=(%d+)"))
  for key, value in string.gmatch(line, "(%a+)=(%w+)") do
    fields = fields + #key + #value
  end
  for word in string.gmatch(line, "%a+") do
    words = words + 1
  end
  local text = string.gsub(line, "%d+", "#")
  masked = masked + #text
end
print(errors .. " " .. days .. " " .. times .. " " .. fields .. " " .. words .. " " .. masked)
-- expect: 5036 390000 9039064 367113 140000 1140644
-- small: 60
