-- Operations whose time is measured at n, 2n, 4n and 8n. Run as: operations.lua NAME N; without
-- arguments it lists the names and the smallest n of each.
local operations, names, sizes = {}, {}, {}

local function operation(name, size, run)
  names[#names + 1] = name
  sizes[name] = size
  operations[name] = run
end

local function numbers(n)
  local list, seed = {}, 42
  for i = 1, n do
    seed = seed * 16807 % 2147483647
    list[i] = seed
  end
  return list
end

-- Tables -------------------------------------------------------------------------------------------

operation("queue", 200000, function(n)
  local queue, head = {}, 1
  for i = 1, n do
    queue[i] = i
    if i % 2 == 0 then
      queue[head] = nil
      head = head + 1
    end
  end
end)

operation("lengthAfterHole", 4000, function(n)
  local list = numbers(n)
  for i = 1, n do
    list[1] = nil
    list[1] = i
    if #list ~= n then error("wrong length") end
  end
end)

operation("emptinessByPairs", 1000, function(n)
  local fields = {}
  for i = 1, n do
    fields["field" .. i] = i
  end
  local function isEmpty(t)
    for key in pairs(t) do return false end
    return true
  end
  for i = 1, n do isEmpty(fields) end
end)

operation("positionByIpairs", 100000, function(n)
  local list = numbers(n)
  for i = 1, n do
    for index, value in ipairs(list) do break end
  end
end)

operation("fillBackwards", 100000, function(n)
  local list = {}
  for i = n, 1, -1 do list[i] = i end
end)

operation("lengthWhileFillingBackwards", 100000, function(n)
  local list, sum = {}, 0
  for i = n, 1, -1 do
    list[i] = i
    sum = sum + #list
  end
end)

operation("append", 200000, function(n)
  local list = {}
  for i = 1, n do list[#list + 1] = i end
end)

operation("removeFirst", 10000, function(n)
  local list = numbers(n)
  for i = 1, n do table.remove(list, 1) end
end)

operation("removeLast", 200000, function(n)
  local list = numbers(n)
  for i = 1, n do table.remove(list) end
end)

operation("setAndDelete", 40000, function(n)
  local set = {}
  for i = 1, n do set["key" .. i] = true end
  for i = 1, n do set["key" .. i] = nil end
end)

operation("setAndDeleteIntegers", 100000, function(n)
  local set = {}
  for i = 1, n do set[i * 1000] = true end
  for i = 1, n do set[i * 1000] = nil end
end)

operation("toggleKey", 100000, function(n)
  local set = {a = 1, b = 2}
  for i = 1, n do
    set.c = i
    set.c = nil
  end
end)

operation("newStringKeys", 40000, function(n)
  local set = {}
  for i = 1, n do set["key" .. i] = i end
end)

operation("longStringKeys", 10000, function(n)
  local set, prefix = {}, string.rep("a common beginning ", 8)
  for i = 1, n do set[prefix .. i] = i end
end)

operation("keysInSteps", 40000, function(n)
  local set = {}
  for i = 1, n do set[i * 4096] = i end
end)

operation("evenKeys", 100000, function(n)
  local set = {}
  for i = 2, 2 * n, 2 do set[i] = i end
end)

operation("powersAsKeys", 2000, function(n)
  local set = {}
  for i = 1, n do
    local key = 1
    for bit = 1, 60 do
      set[key] = i
      key = key * 2
    end
  end
end)

operation("linkedList", 100000, function(n)
  local first = nil
  for i = 1, n do first = {value = i, rest = first} end
end)

operation("closures", 100000, function(n)
  local list = {}
  for i = 1, n do list[i] = function() return i end end
end)

operation("treeRelease", 40000, function(n)
  local function build(size)
    if size < 2 then return {size} end
    local half = math.floor(size / 2)
    return {build(half), build(size - half)}
  end
  build(n)
end)

-- Sorting ------------------------------------------------------------------------------------------

operation("sort", 100000, function(n)
  table.sort(numbers(n))
end)

operation("sortSorted", 200000, function(n)
  local list = {}
  for i = 1, n do list[i] = i end
  table.sort(list)
end)

operation("sortOrganPipe", 100000, function(n)
  local list = {}
  for i = 1, n do list[i] = math.min(i, n - i) end
  table.sort(list)
end)

operation("sortByComparator", 20000, function(n)
  table.sort(numbers(n), function(a, b) return a < b end)
end)

operation("sortOrganPipeByComparator", 20000, function(n)
  local list = {}
  for i = 1, n do list[i] = math.min(i, n - i) end
  table.sort(list, function(a, b) return a < b end)
end)

operation("sortMixed", 5000, function(n)
  local list = numbers(n)
  for i = 1, n, 2 do list[i] = "text" .. list[i] end
  table.sort(list)
end)

-- Growing text -------------------------------------------------------------------------------------

operation("appendToLocal", 200000, function(n)
  local text = ""
  for i = 1, n do text = text .. "abc" end
end)

operation("appendToField", 20000, function(n)
  local page = {text = ""}
  for i = 1, n do page.text = page.text .. "abc" end
end)

operation("appendToElement", 20000, function(n)
  local list = {""}
  for i = 1, n do list[1] = list[1] .. "abc" end
end)

operation("appendInParentheses", 20000, function(n)
  local text = ""
  for i = 1, n do text = (text .. "a") .. "bc" end
end)

operation("appendInFunction", 10000, function(n)
  local function append(text, piece) return text .. piece end
  local text = ""
  for i = 1, n do text = append(text, "abc") end
end)

operation("concat", 100000, function(n)
  table.concat(numbers(n), ", ")
end)

operation("rep", 1000000, function(n)
  string.rep("abc", n)
end)

-- Patterns -----------------------------------------------------------------------------------------

operation("gmatch", 40000, function(n)
  local count = 0
  for word in string.gmatch(string.rep("word ", n), "%a+") do count = count + 1 end
end)

operation("gmatchFirst", 1000, function(n)
  local text = string.rep("word ", n)
  for i = 1, n do
    for word in string.gmatch(text, "%a+") do break end
  end
end)

operation("gsub", 100000, function(n)
  string.gsub(string.rep("word ", n), "o", "0")
end)

operation("gsubEmpty", 40000, function(n)
  string.gsub(string.rep("a", n), "", "-")
end)

operation("splitPlain", 40000, function(n)
  local text, from, count = string.rep("field,", n), 1, 0
  local first, last = string.find(text, ",", from, true)
  while first do
    count = count + #string.sub(text, from, first - 1)
    from = last + 1
    first, last = string.find(text, ",", from, true)
  end
end)

operation("splitByPattern", 40000, function(n)
  local text, from, count = string.rep("field;  ", n), 1, 0
  local first, last = string.find(text, ";%s*", from)
  while first do
    count = count + #string.sub(text, from, first - 1)
    from = last + 1
    first, last = string.find(text, ";%s*", from)
  end
end)

operation("tokens", 20000, function(n)
  local text, from, count = string.rep("name = 12 ", n), 1, 0
  while from <= #text do
    local first, last = string.find(text, "^%s+", from)
    if not first then first, last = string.find(text, "^%a+", from) end
    if not first then first, last = string.find(text, "^%d+", from) end
    from = (last or from) + 1
    count = count + 1
  end
end)

operation("openTagOnly", 500, function(n)
  string.find(string.rep("<b>text ", n), "<b>(.-)</b>")
end)

operation("openBracketsOnly", 4000, function(n)
  string.find(string.rep("[", n) .. "x", "%[([^%]]*)%]")
end)

operation("trim", 20000, function(n)
  string.match(string.rep(" ", n) .. string.rep("word ", n) .. string.rep(" ", n), "^%s*(.-)%s*$")
end)

operation("trimAtEnd", 20000, function(n)
  string.gsub(string.rep(" ", n) .. "x", "%s+$", "")
end)

operation("findPlainLongNeedle", 50000, function(n)
  string.find(string.rep("a", n), string.rep("a", n / 2) .. "b", 1, true)
end)

operation("tonumberLong", 20000, function(n)
  tonumber(string.rep("7", n))
end)

operation("compareTexts", 100000, function(n)
  local count = 0
  for i = 1, n do
    if tostring(i) < "5" then count = count + 1 end
  end
end)

-- Calls and errors ---------------------------------------------------------------------------------

operation("recursion", 20000, function(n)
  local function depth(k)
    if k == 0 then return 0 end
    return 1 + depth(k - 1)
  end
  depth(n)
end)

operation("nestedPcall", 2000, function(n)
  local function nest(k)
    if k == 0 then return 0 end
    local ok, value = pcall(nest, k - 1)
    return value + 1
  end
  nest(n)
end)

operation("errors", 20000, function(n)
  for i = 1, n do pcall(error, "text") end
end)

operation("errorThroughDepth", 2000, function(n)
  local function fail(k)
    if k == 0 then error("deep") end
    return 1 + fail(k - 1)
  end
  for i = 1, 10 do pcall(fail, n) end
end)

if #arg == 0 then
  for i, name in ipairs(names) do print(name .. " " .. sizes[name]) end
elseif arg[1] ~= "nothing" then
  operations[arg[1]](tonumber(arg[2]))
end
