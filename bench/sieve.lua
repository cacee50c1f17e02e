-- Sieve of Eratosthenes: filling, reading and overwriting one large array.
local limit = tonumber(arg[1] or 2000000)
local isPrime = {false}
for n = 2, limit do
  isPrime[n] = true
end

local factor = 2
while factor * factor <= limit do
  if isPrime[factor] then
    for multiple = factor * factor, limit, factor do
      isPrime[multiple] = false
    end
  end
  factor = factor + 1
end

local count = 0
for n = 1, limit do
  if isPrime[n] then
    count = count + 1
  end
end
print(count)
-- expect: 148933
-- small: 4000
