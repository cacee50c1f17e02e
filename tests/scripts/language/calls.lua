-- Calls: arguments, results, what can be called. Only the last argument expands, even in parentheses.
function pair(a, b) return a, b end
function three() return "a", "b", "c" end
print(pair(three()))  -- expect: a	b
print(pair("x", three()))  -- expect: x	a
print((three()), (three()))  -- expect: a	a	b	c
print((function() return three end)()(), (function() return 1 end)())  -- expect: a	1

print(pcall(function() missing() end))  -- expect: false	attempt to call a nil value
print(pcall(function() pairs({})() end))  -- expect: false	attempt to call a iterator value

-- Methods: the object comes first, a declaration with ":" names it self.
account = {balance = 10, inner = {}}
function account:deposit(amount)
  self.balance = self.balance + amount
  return self
end
function account.get(object) return object.balance end
function account:arguments(a, b) return self == account, a, b end
function account.inner:declared(self) return (function() return self end)() end
print(account:deposit(5):deposit(3):get(), account.get({balance = "other"}))  -- expect: 18	other
print(account:arguments(1, 2, 3))  -- expect: true	1	2
print(account.inner:declared("parameter"))  -- expect: parameter
print(pcall(function() function missing.f() end end))  -- expect: false	attempt to assign into a nil value
print(pcall(function() function account.x.y.f() end end))  -- expect: false	attempt to index a nil value
print(account.get, tostring(account.inner.declared), function() end)
-- expect: [function account.get]	function: account.inner:declared	[function <anonymous>]
function two() return 1, 2 end
print(account:arguments(two()))  -- expect: true	1	2
-- Many results travel through several calls, truncated only where a list goes on.
function seven(a, b, c, d, e, f, g) return g, f, e, d, c, b, a end
function results() return 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20 end
function further() return 0, (function() return results() end)() end
print(seven(1, 2, 3))  -- expect: nil	nil	nil	nil	3	2	1
print(seven("x", results()))  -- expect: 6	5	4	3	2	1	x
print(pcall(further))  -- expect: true	0	1	2	3	4	5	6	7	8	9	10	11	12	13	14	15	16	17	18	19	20
