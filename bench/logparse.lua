-- Lines of a log, each taken apart by one pattern from its start to its end.
local n = tonumber(arg[1] or 40000)

local levels, paths = {"INFO", "WARN", "ERROR"}, {"/", "/index.html", "/api/items", "/login"}
local lines, seed = {}, 42
for i = 1, n do
  seed = seed * 16807 % 2147483647
  lines[i] = "2024-05-" .. 10 + seed % 20 .. " 10:" .. 10 + seed % 50 .. " [" .. levels[seed % 3 + 1] ..
      "] GET " .. paths[seed % 4 + 1] .. " user=u" .. seed % 1000 .. " took=" .. seed % 900 .. "ms"
end

local counts, slowest, total, letters = {}, "", 0, 0
local longest = 0
for i, line in ipairs(lines) do
  local day, minute, level, path, user, took =
      string.match(line, "^%d+%-%d+%-(%d+) %d+:(%d+) %[(%a+)%] %a+ (%S+) user=(%w+) took=(%d+)ms$")
  local time = tonumber(took)
  counts[level] = (counts[level] or 0) + 1
  total = total + time
  letters = letters + #path + tonumber(day) + tonumber(minute)
  if time > longest then
    longest = time
    slowest = user
  end
end
print(counts.INFO .. " " .. counts.WARN .. " " .. counts.ERROR .. " " .. total .. " " .. letters .. " " .. slowest)
-- expect: 13468 13312 13220 18010934 2440324 u699
-- small: 100
