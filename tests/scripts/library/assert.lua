-- assert(v, message, ...): its arguments when v is true, an error otherwise.
print(assert(1))  -- expect: 1
print(assert(1, 2, 3))  -- expect: 1	2	3
print(assert("v", nil, false))  -- expect: v	nil	false
print(assert(0), assert(""), assert(0.0))  -- expect: 0		0
print(assert(true, "unused message"))  -- expect: true	unused message
print((assert({10, 20}))[2], assert(print) == print)  -- expect: 20	true
function load(name) return nil, "cannot load " .. name end
function two() return 1, 2 end
print(assert(two()))  -- expect: 1	2
a, b, c = assert(two())
print(a, b, c)  -- expect: 1	2	nil

print(pcall(assert, false))  -- expect: false	assertion failed!
print(pcall(assert, nil))  -- expect: false	assertion failed!
print(pcall(assert, false, "own message"))  -- expect: false	own message
print(pcall(assert, nil, "own message", "unused"))  -- expect: false	own message
print(pcall(assert, nil, 42))  -- expect: false	42
print(pcall(assert, nil, 1.25))  -- expect: false	1.25
print(pcall(assert, false, nil))  -- expect: false	nil
print(pcall(assert, false, false))  -- expect: false	false
print(pcall(assert, false, print))  -- expect: false	function: print
print(pcall(assert, load("x")))  -- expect: false	cannot load x
print(pcall(assert))  -- expect: false	assert expects at least 1 arguments
print(pcall(function() assert(two() == 2) end))  -- expect: false	assertion failed!
detail = {}
ok, message = pcall(assert, false, detail)
print(type(message), message == tostring(detail))  -- expect: string	true
function none() end
print(pcall(function() assert(none()) end))  -- expect: false	assert expects at least 1 arguments
print(pcall(function() assert(none(), "first is nil") end))  -- expect: false	first is nil

-- The message is evaluated whether it is needed or not.
function note(text)
  print("built", text)
  return text
end
assert(true, note("message"))  -- expect: built	message

assert(1 == 1, "no")
assert(  -- expect error: cannot load file
  load("file")
)
