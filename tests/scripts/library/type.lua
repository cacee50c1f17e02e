-- type(v): the kind of a value; both kinds of numbers share one name.
print(type(nil), type(true), type(1), type(1.5))  -- expect: nil	boolean	number	number
print(type("x"), type({}), type(print), type(function() end))  -- expect: string	table	function	function
print(type(io.stdout), type(io.stderr), type(pairs({})), type(ipairs({})))  -- expect: userdata	userdata	iterator	iterator
print(type(type), type(type(nil)), type(undefined))  -- expect: function	string	nil
print(type(1 / 3), type(0 / -1), type(9223372036854775807 * 2), type(#""))  -- expect: number	number	number	number
print(type(1 .. ""), type(1 == 1), type(nil and 1), type(_VERSION))  -- expect: string	boolean	nil	string
print(type(string), type(table), type(math), type(io), type(os))  -- expect: table	table	table	table	table
print(type(nil) == "nil")  -- expect: true

function none() end
print(pcall(type))  -- expect: false	type expects 1 argument
print(pcall(type, 1, 2))  -- expect: false	type expects 1 argument
print(pcall(type, nil, nil))  -- expect: false	type expects 1 argument
print(pcall(function() return type(none()) end))  -- expect: false	type expects 1 argument

if type(none()) == "nil" then print("never") end
-- expect error bare: type expects 1 argument
