-- Bank accounts: records with methods, a history that only its closures can reach, and errors that
-- `pcall` catches.
--
-- expect: Ada has 120 (opened with 100, deposit 50, withdrawal 30)
-- expect: Bob has 50 (opened with 20, deposit 30)
-- expect: refused: Bob has only 50
-- expect: refused: the amount must be positive
-- expect: the bank holds 170

-- Returns two functions, one that adds an entry and one that lists all. Their list is a local
-- variable of this call: the functions keep it alive, and nothing else in the program can touch it.
local function newHistory(first)
  local entries = {first}
  return function(entry)
    entries[#entries + 1] = entry
  end, function()
    return table.concat(entries, ", ")
  end
end

local function requirePositive(amount)
  if amount <= 0 then
    error("the amount must be positive")
  end
end

-- A function declared with a colon takes the record that it is called on as `self`.
local methods = {}

function methods:deposit(amount)
  requirePositive(amount)
  self.balance = self.balance + amount
  self.note("deposit " .. amount)
end

function methods:withdraw(amount)
  requirePositive(amount)
  if amount > self.balance then
    error(self.owner .. " has only " .. self.balance)
  end
  self.balance = self.balance - amount
  self.note("withdrawal " .. amount)
end

function methods:transfer(other, amount)
  self:withdraw(amount)
  other:deposit(amount)
end

function methods:describe()
  return self.owner .. " has " .. self.balance .. " (" .. self.history() .. ")"
end

-- There are no classes: a record gets its methods by copying them in. `note` and `history` are the
-- only way to this account's entries.
local function newAccount(owner, balance)
  local note, history = newHistory("opened with " .. balance)
  local account = {owner = owner, balance = balance, note = note, history = history}
  for name, method in pairs(methods) do
    account[name] = method
  end
  return account
end

local ada = newAccount("Ada", 100)
local bob = newAccount("Bob", 20)
ada:deposit(50)
ada:transfer(bob, 30)
print(ada:describe())
print(bob:describe())

-- pcall calls a function with the arguments that follow. It returns true and the results, or false
-- and the message of the error.
local ok, message = pcall(bob.withdraw, bob, 500)
if not ok then
  print("refused: " .. message)
end
ok, message = pcall(ada.deposit, ada, -5)
if not ok then
  print("refused: " .. message)
end

local total = 0
for i, account in ipairs({ada, bob}) do
  total = total + account.balance
end
print("the bank holds " .. total)
