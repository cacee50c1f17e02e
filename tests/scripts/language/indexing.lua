-- Reading fields and entries: tables, strings, userdata, and what cannot be indexed.
t = {x = {y = {z = "deep"}}, "first", {"second"}}
print(t.x.y.z, t["x"].y["z"], t[1], t[2][1], t[3])  -- expect: deep	deep	first	second	nil
print(t.x["y"]["z"], ((t.x).y).z, (t)[1])  -- expect: deep	deep	first
function get() return t end
print(get().x.y.z, get()[1], get()["x"]["y"].z)  -- expect: deep	first	deep
k = "x"
print(t[k].y, t.k)  -- expect: {z: deep}	nil

-- Absent entries are nil; indexing nil is not.
print(t.nothing, t[99], t[-1], t[true])  -- expect: nil	nil	nil	nil
print(pcall(function() return nil_global.x end))  -- expect: false	attempt to index a nil value
print(pcall(function() return (5).x end))  -- expect: false	attempt to index a number value
print(pcall(function() return (true).x end))  -- expect: false	attempt to index a boolean value
print(pcall(function() return print.x end))  -- expect: false	attempt to index a function value
print(pcall(function() return pairs({}).x end))  -- expect: false	attempt to index a iterator value
print(pcall(function() return nil_global[nil] end))  -- expect: false	attempt to index a nil value

-- Strings have the methods of the string library and nothing else.
print(("abc").sub == string.sub, ("abc")["rep"] == string.rep)  -- expect: true	true
print(pcall(function() return ("abc").foo end))  -- expect: false	string indexing only supports library methods
print(pcall(function() return ("abc")[1] end))  -- expect: false	string indexing only supports library methods
print(pcall(function() return ("abc")[{}] end))  -- expect: false	string indexing only supports library methods

-- The methods are whatever the global `string` holds at that moment.
function string.shout(text) return text .. "!" end
string.answer = 42
print(("hey"):shout(), ("any").answer)  -- expect: hey!	42
kept_rep = string.rep
string.rep = nil
print(pcall(function() return ("x"):rep(2) end))  -- expect: false	string indexing only supports library methods
string.rep = kept_rep
kept_library = string
string = nil
print(pcall(function() return ("x").only end))  -- expect: false	string indexing only supports library methods
string = "sub"
print(pcall(function() return ("x").sub end))  -- expect: false	string indexing only supports library methods
string = kept_library
print(("x"):rep(2))  -- expect: xx

-- Userdata answers to strings only.
print(pcall(function() return io.stdout[1] end))  -- expect: false	userdata fields must be strings

-- A failing read reports the line where the whole chain starts.
config = {
  server = {}
}
port = 0 +
  config.server  -- expect error: attempt to index a nil value
    .address
    .port
