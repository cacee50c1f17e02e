-- type(v): the kind of a value; both kinds of numbers share one name.
print(type(nil), type(true), type(1), type(1.5))  -- expect: nil	boolean	number	number
print(type("x"), type({}), type(print), type(function() end))  -- expect: string	table	function	function
print(type(io.stdout), type(io.stderr), type(pairs({})), type(ipairs({})))  -- expect: userdata	userdata	iterator	iterator

function none() end

if type(none()) == "nil" then print("never") end
-- expect error bare: type expects 1 argument
