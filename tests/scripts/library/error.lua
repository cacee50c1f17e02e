-- error(message, level): always a string, always at the line of the call; the level is ignored.
print(pcall(error, "text"))  -- expect: false	text
print(pcall(error))  -- expect: false	error
print(pcall(error, nil))  -- expect: false	nil
print(pcall(error, true))  -- expect: false	true
print(pcall(error, 5))  -- expect: false	5
print(pcall(error, "with level", 2))  -- expect: false	with level
print(pcall(error, "any level", {}))  -- expect: false	any level
print(pcall(function() error("two\nlines") end))
-- expect: false	two
-- expect: lines

-- A table does not survive as a value.
problem = {code = 1}
ok, message = pcall(error, problem)
print(ok, type(message), message == tostring(problem))  -- expect: false	string	true

function fail(message)
  error(message, 2)  -- expect error: value is 3
end
fail("value is " .. 1 + 2)
