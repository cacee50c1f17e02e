-- Method declarations and method calls.
account = {balance = 10}
function account:deposit(amount)
  self.balance = self.balance + amount
  return self
end
function account:get() return self.balance end
function account.plain(first, second) return first, second end
account:deposit(5)
print(account:get(), account.balance)  -- expect: 15	15
print(account.get(account), account.get({balance = "other"}))  -- expect: 15	other
print(account:deposit(1):deposit(2):get())  -- expect: 18

-- A method call passes the object first, a declaration with ":" names it self.
print(account:plain("x") == account, account.plain("x", "y"))  -- expect: true	x	y
function account:arguments(a, b) return self == account, a, b end
print(account:arguments())  -- expect: true	nil	nil
print(account:arguments(1))  -- expect: true	1	nil
print(account:arguments(1, 2, 3))  -- expect: true	1	2
print(account.arguments(1, 2, 3))  -- expect: false	2	3
function account:two() return "p", "q" end
print(account:two())  -- expect: p	q
print(account:two(), account:arguments(account:two()))  -- expect: p	true	p	q
function account:assignSelf()
  self = {balance = "replaced"}
  return self.balance
end
print(account:assignSelf(), account:get())  -- expect: replaced	18
account.stored = function(self, by) return self.balance * by end
print(account:stored(2))  -- expect: 36

-- self is an ordinary name elsewhere.
self = "global self"
function noSelf() return self end
print(noSelf())  -- expect: global self
function account:inner() return (function() return self.balance end)() end
print(account:inner())  -- expect: 18
function account:declared(self) return self end
print(account:declared("parameter"))  -- expect: parameter

-- Dotted declarations store into existing tables.
a = {b = {c = {}}}
function a.f() return "a.f" end
function a.b.f() return "a.b.f" end
function a.b.c.f() return "a.b.c.f" end
function a.b.c:m() return self == a.b.c end
print(a.f(), a.b.f(), a.b.c.f(), a.b.c:m())  -- expect: a.f	a.b.f	a.b.c.f	true
function a.f() return "again" end
print(a.f())  -- expect: again
print(pcall(function() function missing.f() end end))  -- expect: false	attempt to assign into a nil value
print(pcall(function() function a.x.y.f() end end))  -- expect: false	attempt to index a nil value
print(pcall(function() function a.x:m() end end))  -- expect: false	attempt to assign into a nil value
print(pcall(function() function self.f() end end))  -- expect: false	attempt to assign into a string value

-- Objects by expression: calls, entries, parentheses, literals.
list = {account, {get = function(self) return "second" end}}
function which(i) return list[i] end
print(list[1]:get(), list[2]:get(), which(1):get(), which(2):get())  -- expect: 18	second	18	second
print((list[3] or account):get(), ({get = function(self) return #self end, 1, 2}):get())  -- expect: 18	2
print({name = "literal", get = function(self) return self.name end}:get())  -- expect: literal

-- The object is evaluated once.
calls = 0
function counted()
  calls = calls + 1
  return account
end
counted():deposit(0)
print(calls)  -- expect: 1
print(counted():get(), calls)  -- expect: 18	2

-- The object outlives its variable while its method runs.
object = {name = "kept"}
function object:vanish()
  object = nil
  return self.name, object
end
print(object:vanish())  -- expect: kept	nil
object = {name = "kept too", replace = function(self, other) return self.name .. other.name end}
function swapped()
  local old = object
  object = {name = " swapped"}
  return object
end
print(object:replace(swapped()))  -- expect: kept too swapped

-- Classes by delegation.
Point = {}
function Point.new(x, y) return {x = x, y = y, add = Point.add, show = Point.show} end
function Point:add(other) return Point.new(self.x + other.x, self.y + other.y) end
function Point:show() return "(" .. self.x .. "," .. self.y .. ")" end
print(Point.new(1, 2):add(Point.new(10, 20)):add(Point.new(0.5, -2)):show())  -- expect: (11.5,20)

-- Strings have methods, other values have none.
print(("ab"):rep(2):sub(2, 3), #("x"):rep(10))  -- expect: ba	10
print(pcall(function() return missing:m() end))  -- expect: false	attempt to index a nil value
print(pcall(function() return (5):m() end))  -- expect: false	attempt to index a number value
print(pcall(function() return (true):m() end))  -- expect: false	attempt to index a boolean value
print(pcall(function() return print:m() end))  -- expect: false	attempt to index a function value
print(pcall(function() return pairs({}):next() end))  -- expect: false	attempt to index a iterator value
print(pcall(function() return account:missing() end))  -- expect: false	attempt to call a nil value
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
