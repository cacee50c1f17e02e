-- A function counts its arguments before it looks at any of them; a receiver counts, too.
print(pcall(function() return ("a"):rep() end))  -- expect: false	string.rep expects 2 arguments

-- An explicit nil is an argument; a call without results gives none.
function none() end
print(pcall(tostring, nil))  -- expect: true	nil
print(pcall(function() return tostring(none()) end))  -- expect: false	tostring expects 1 argument
print(pcall(function() return math.floor(1, none()) end))  -- expect: true	1

-- Counts come before kinds, and these errors have no location.
print(pcall(string.rep, nil))  -- expect: false	string.rep expects 2 arguments
string.gsub("a")
-- expect error bare: string.gsub expects 3 arguments
