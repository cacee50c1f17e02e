-- A page template that is filled in, one placeholder after the other.
local n = tonumber(arg[1] or 25000)

local page = "Dear {name},\nyour order {order} of {count} {item} is on its way to {town}.\n" ..
    "It arrives in {days} days, {name}. Yours, the {item} team\n"
local names = {"name", "order", "count", "item", "town", "days"}

local function fill(text, values)
  for i, name in ipairs(names) do
    text = string.gsub(text, "{" .. name .. "}", values[name])
  end
  return text
end

local length, last = 0, ""
for i = 1, n do
  last = fill(page, {name = "Ann" .. i % 10, order = "A-" .. i, count = i % 7, item = "lamp", town = "Ulm", days = 3})
  length = length + #last
end
print(length .. " " .. string.sub(last, 1, 10))
-- expect: 2763894 Dear Ann0,
-- small: 100
