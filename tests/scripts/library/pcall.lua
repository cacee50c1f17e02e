-- pcall, error, assert: true and the results, or false and the bare message, which is always a string.
print(pcall(function() return 1, nil, "three" end))  -- expect: true	1	nil	three
print(pcall(pcall, error, "inner"))  -- expect: true	false	inner
problem = {code = 1}
ok, message = pcall(error, problem)
print(ok, type(message), message == tostring(problem))  -- expect: false	string	true
print(assert("v", nil, false))  -- expect: v	nil	false
print(pcall(assert, nil, 42), pcall(assert, false, nil))  -- expect: false	false	nil

-- Uncaught errors are located at the line of the call, whatever the level.
function fail(message)
  error(message, 2)  -- expect error: value is 3
end
fail("value is " .. 1 + 2)
