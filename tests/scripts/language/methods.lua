-- Method declarations and method calls: the object comes first, a declaration with ":" names it self.
account = {balance = 10}
function account:deposit(amount)
  self.balance = self.balance + amount
  return self
end
function account:get() return self.balance end
function account.plain(first, second) return first, second end
print(account:deposit(5):deposit(3):get(), account.get({balance = "other"}))  -- expect: 18	other
print(account:plain("x") == account, account.plain("x", "y"))  -- expect: true	x	y
function account:arguments(a, b) return self == account, a, b end
print(account:arguments())  -- expect: true	nil	nil
print(account:arguments(1, 2, 3))  -- expect: true	1	2
print(account.arguments(1, 2, 3))  -- expect: false	2	3

-- self is an ordinary name elsewhere.
self = "global self"
function noSelf() return self end
function account:inner() return (function() return self.balance end)() end
function account:declared(self) return self end
print(noSelf(), account:inner(), account:declared("parameter"))  -- expect: global self	18	parameter

-- Dotted declarations store into existing tables.
a = {b = {c = {}}}
function a.f() return "a.f" end
function a.b.c.f() return "a.b.c.f" end
function a.b.c:m() return self == a.b.c end
print(a.f(), a.b.c.f(), a.b.c:m())  -- expect: a.f	a.b.c.f	true
print(pcall(function() function missing.f() end end))  -- expect: false	attempt to assign into a nil value
print(pcall(function() function a.x.y.f() end end))  -- expect: false	attempt to index a nil value
print(pcall(function() function a.x:m() end end))  -- expect: false	attempt to assign into a nil value

-- Strings have methods, other values have none.
print(pcall(function() return account:balance() end))  -- expect: false	attempt to call a number value
print(pcall(function() return ("x"):nope() end))  -- expect: false	string indexing only supports library methods

account
    :deposit(1)
    :deposit(2)
print(account:get())  -- expect: 21
account  -- expect error: attempt to call a nil value
    :deposit(3)
    :undeposit(
      4
    )
