-- Factorials as lists of digits: whole-number division with math.floor, remainders, carries.
local n = tonumber(arg[1] or 1500)

local digits = {1}
for factor = 2, n do
  local carry = 0
  for i = 1, #digits do
    local product = digits[i] * factor + carry
    digits[i] = product % 10000
    carry = math.floor(product / 10000)
  end
  while carry > 0 do
    digits[#digits + 1] = carry % 10000
    carry = math.floor(carry / 10000)
  end
end
local sum, checksum = 0, 0
for i = 1, #digits do
  sum = sum + digits[i]
  checksum = (checksum * 10000 + digits[i]) % 1000003
end
print(#digits .. " " .. sum .. " " .. checksum)
-- expect: 1029 4749525 868973
-- small: 50
