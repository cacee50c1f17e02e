-- Reading fields and entries: tables, strings, userdata, and what cannot be indexed.
t = {x = {y = {z = "deep"}}, "first", {"second"}}
function get() return t end
k = "x"
print(t.x.y.z, get()["x"]["y"].z, t[k].y, t[2][1], t.k, t[-1])  -- expect: deep	deep	{z: deep}	second	nil	nil
print(pcall(function() return nil_global[nil] end))  -- expect: false	attempt to index a nil value
print(pcall(function() return print.x end))  -- expect: false	attempt to index a function value
print(pcall(function() return pairs({}).x end))  -- expect: false	attempt to index a iterator value
print(pcall(function() return io.stdout[1] end))  -- expect: false	userdata fields must be strings

-- Strings have the methods of the string library and nothing else: whatever the global `string` holds at that moment.
print(("abc").sub == string.sub, ("abc")["rep"] == string.rep)  -- expect: true	true
print(pcall(function() return ("abc").foo end))  -- expect: false	string indexing only supports library methods
print(pcall(function() return ("abc")[{}] end))  -- expect: false	string indexing only supports library methods
function string.shout(text) return text .. "!" end
string.answer = 42
print(("hey"):shout(), ("any").answer)  -- expect: hey!	42
kept_library, string = string, "sub"
print(pcall(function() return ("x").sub end))  -- expect: false	string indexing only supports library methods
string = kept_library
print(("x"):rep(2))  -- expect: xx
function get() return {list = {item = {n = 5}}} end
print(get().list.item.n, #get().list.item)  -- expect: 5	0
