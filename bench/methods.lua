-- Four million method calls on two kinds of records that answer to the same names.
local n = tonumber(arg[1] or 1000000)

local function add(self, amount)
  self.total = self.total + amount
end

local function addWrapped(self, amount)
  local total = self.total + amount
  if total >= self.limit then
    total = total - self.limit
  end
  self.total = total
end

local function read(self)
  return self.total
end

local function newPlain()
  return {total = 0, add = add, read = read}
end

local function newWrapped(limit)
  return {total = 0, limit = limit, add = addWrapped, read = read}
end

local plain = newPlain()
local wrapped = newWrapped(997)
local sum = 0
for i = 1, n do
  plain:add(1)
  wrapped:add(7)
  sum = sum + (plain:read() + wrapped:read()) % 3
end
print(plain:read() .. " " .. wrapped:read() .. " " .. sum)
-- expect: 1000000 63 1000000
-- small: 1500
