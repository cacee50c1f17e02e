-- Errors raised two calls deep and caught, one for every other call.
local n = tonumber(arg[1] or 60000)

local function checked(amount, limit)
  if amount > limit then
    error("amount " .. amount .. " above " .. limit)
  end
  return amount
end

local function withdraw(account, amount)
  account.balance = account.balance - checked(amount, 50)
  return account.balance
end

local account = {balance = 0}
local failed, letters = 0, 0
for i = 1, n do
  local ok, result = pcall(withdraw, account, i % 101)
  if not ok then
    failed = failed + 1
    letters = letters + #result
  end
end
print(account.balance .. " " .. failed .. " " .. letters)
-- expect: -757371 29700 535194
-- small: 300
