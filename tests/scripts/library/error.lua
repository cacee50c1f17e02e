-- error(message, level): always a string, always at the line of the call; the level is ignored.
print(pcall(error, "text"))  -- expect: false	text
print(pcall(error))  -- expect: false	error
print(pcall(error, nil))  -- expect: false	nil
print(pcall(error, true))  -- expect: false	true
print(pcall(error, 5))  -- expect: false	5
print(pcall(error, 2.50))  -- expect: false	2.5
print(pcall(error, 1 / 3))  -- expect: false	0.333333
print(pcall(error, print))  -- expect: false	function: print
print(pcall(error, "with level", 0))  -- expect: false	with level
print(pcall(error, "with level", 2))  -- expect: false	with level
print(pcall(error, "any level", {}))  -- expect: false	any level
print(pcall(error, "a", "b", "c"))  -- expect: false	error expects between 0 and 2 arguments
print(pcall(function() error("two\nlines") end))
-- expect: false	two
-- expect: lines

-- A table does not survive as a value.
problem = {code = 1}
ok, message = pcall(error, problem)
print(ok, type(message), message == tostring(problem))  -- expect: false	string	true
print(pcall(function() return message.code end))  -- expect: false	string indexing only supports library methods

-- An error in the middle of building another error.
print(pcall(function() error("a" .. nil + 1) end))  -- expect: false	operator '+' expects numbers

function fail(message)
  error(message, 2)  -- expect error: value is 3
end
fail("value is " .. 1 + 2)
