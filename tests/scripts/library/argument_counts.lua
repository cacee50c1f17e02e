-- Every library function checks how many arguments it gets before it looks at any of them.
print(pcall(tostring))  -- expect: false	tostring expects 1 argument
print(pcall(tonumber))  -- expect: false	tonumber expects between 1 and 2 arguments
print(pcall(type))  -- expect: false	type expects 1 argument
print(pcall(assert))  -- expect: false	assert expects at least 1 arguments
print(pcall(error, 1, 2, 3))  -- expect: false	error expects between 0 and 2 arguments
print(pcall(pcall))  -- expect: false	pcall expects at least 1 arguments
print(pcall(pairs))  -- expect: false	pairs expects 1 argument
print(pcall(ipairs))  -- expect: false	ipairs expects 1 argument

print(pcall(string.sub, "abc"))  -- expect: false	string.sub expects between 2 and 3 arguments
print(pcall(string.sub, 1, 2, 3, 4))  -- expect: false	string.sub expects between 2 and 3 arguments
print(pcall(string.find, "abc"))  -- expect: false	string.find expects between 2 and 4 arguments
print(pcall(string.match, "a", "b", 1, 2))  -- expect: false	string.match expects between 2 and 3 arguments
print(pcall(string.gmatch, "abc"))  -- expect: false	string.gmatch expects 2 arguments
print(pcall(string.gsub, "a", "b"))  -- expect: false	string.gsub expects 3 arguments
print(pcall(string.gsub, "a", "b", "c", 1))  -- expect: false	string.gsub expects 3 arguments
print(pcall(string.format))  -- expect: false	string.format expects at least 1 arguments
print(pcall(string.rep, "a"))  -- expect: false	string.rep expects 2 arguments
print(pcall(string.rep, "a", 1, ","))  -- expect: false	string.rep expects 2 arguments
print(pcall(string.unpack))  -- expect: false	string.unpack expects between 2 and 3 arguments

print(pcall(table.remove))  -- expect: false	table.remove expects between 1 and 2 arguments
print(pcall(table.concat, {}, "", 1))  -- expect: false	table.concat expects between 1 and 2 arguments
print(pcall(table.sort))  -- expect: false	table.sort expects between 1 and 2 arguments
print(pcall(math.min))  -- expect: false	math.min expects at least 1 arguments
print(pcall(math.max))  -- expect: false	math.max expects at least 1 arguments
print(pcall(math.floor))  -- expect: false	math.floor expects 1 argument
print(pcall(math.floor, 1, 2))  -- expect: false	math.floor expects 1 argument

print(pcall(io.open))  -- expect: false	io.open expects between 1 and 2 arguments
print(pcall(io.write))  -- expect: false	io.write expects at least 1 arguments
print(pcall(os.execute))  -- expect: false	os.execute expects 1 argument
print(pcall(os.exit, 1, 2))  -- expect: false	os.exit expects between 0 and 1 arguments

-- A method's receiver counts.
print(pcall(io.stdout.write))  -- expect: false	stream:write expects at least 2 arguments
print(pcall(io.stdout.write, io.stdout))  -- expect: false	stream:write expects at least 2 arguments
print(pcall(io.stdout.read))  -- expect: false	file:read expects between 1 and 2 arguments
print(pcall(io.stdout.seek, 1, 2, 3, 4))  -- expect: false	file:seek expects between 1 and 3 arguments
print(pcall(io.stdout.close))  -- expect: false	file:close expects 1 argument
print(pcall(function() io.stdout:close(1) end))  -- expect: false	file:close expects 1 argument
print(pcall(function() return ("a"):rep() end))  -- expect: false	string.rep expects 2 arguments
print(pcall(function() return ("a"):sub() end))  -- expect: false	string.sub expects between 2 and 3 arguments

-- An explicit nil is an argument; a call without results gives none.
function none() end
print(pcall(tostring, nil))  -- expect: true	nil
print(pcall(function() return tostring(none()) end))  -- expect: false	tostring expects 1 argument
print(pcall(function() return math.floor(1, none()) end))  -- expect: true	1

-- Counts come before kinds, and these errors have no location.
print(pcall(string.rep, nil))  -- expect: false	string.rep expects 2 arguments
print(pcall(table.sort, nil, nil, nil))  -- expect: false	table.sort expects between 1 and 2 arguments
string.gsub("a")
-- expect error bare: string.gsub expects 3 arguments
