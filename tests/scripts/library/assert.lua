-- assert(v, message, ...): its arguments when v is true, an error otherwise.
print(assert(1, 2, 3))  -- expect: 1	2	3
print(assert("v", nil, false))  -- expect: v	nil	false
print(assert(0), assert(""), assert(0.0))  -- expect: 0		0
function load(name) return nil, "cannot load " .. name end
function two() return 1, 2 end
print(assert(two()))  -- expect: 1	2

print(pcall(assert, false))  -- expect: false	assertion failed!
print(pcall(assert, false, "own message"))  -- expect: false	own message
print(pcall(assert, nil, 42))  -- expect: false	42
print(pcall(assert, false, nil))  -- expect: false	nil
print(pcall(assert))  -- expect: false	assert expects at least 1 arguments

assert(1 == 1, "no")
assert(  -- expect error: cannot load file
  load("file")
)
