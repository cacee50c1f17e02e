-- A list of records: filling, filtering into new lists, updating fields, sums by group.
local n = tonumber(arg[1] or 30000)

local regions = {"north", "south", "east", "west"}
local seed = 42
local orders = {}
for i = 1, n do
  seed = seed * 16807 % 2147483647
  orders[#orders + 1] = {id = i, region = regions[seed % 4 + 1], amount = seed % 500, paid = seed % 3 == 0}
end

local function unpaidAbove(list, amount)
  local found = {}
  for i, order in ipairs(list) do
    if not order.paid and order.amount > amount then
      found[#found + 1] = order
    end
  end
  return found
end

local kept = 0
for round = 1, 30 do
  for i, order in ipairs(unpaidAbove(orders, 450)) do
    order.amount = order.amount - 30
    order.paid = order.amount < 430
    kept = kept + 1
  end
  for i = 1, #orders do
    local order = orders[i]
    order.amount = order.amount + 1
  end
end

local totals = {}
for i, order in ipairs(orders) do
  totals[order.region] = (totals[order.region] or 0) + order.amount
end
print(kept .. " " .. totals.north .. " " .. totals.south .. " " .. totals.east .. " " .. totals.west)
-- expect: 4958 2050546 2084181 2023490 2050507
-- small: 100
