-- string.rep(s, n): s, n times. There is no separator.
print(string.rep("ab", 3), string.rep("x", 5), string.rep("one ", 1))  -- expect: ababab	xxxxx	one 
print("[" .. string.rep("ab", 0) .. string.rep("ab", -1) .. string.rep("ab", -9223372036854775808) .. "]")  -- expect: []
print(string.rep("a", 2.7), "[" .. string.rep("a", 0.9) .. "]", string.rep("-", 3.0))  -- expect: aa	[]	---
print(#string.rep("a\0", 3), string.rep("a\0", 2) == "a\0a\0")  -- expect: 6	true
long = string.rep("0123456789", 100000)
print(#long, long:sub(1, 12), long:sub(-12), long:sub(499999, 500003))  -- expect: 1000000	012345678901	890123456789	89012
print(("=-"):rep(4))  -- expect: =-=-=-=-

-- One repetition is the string itself, which appending to the copy does not change.
original = "text"
copy = string.rep(original, 1)
copy = copy .. "!"
print(original, copy)  -- expect: text	text!

-- What cannot be held is an error that can be caught; nothing times anything is nothing.
print(#string.rep("", 9223372036854775807), #string.rep("", tonumber("1e300")))  -- expect: 0	0
print(pcall(string.rep, "x", 9223372036854775807))  -- expect: false	not enough memory
print(pcall(string.rep, "abcdefghi", 1152921504606846976))  -- expect: false	not enough memory

print(pcall(string.rep, "x"))  -- expect: false	string.rep expects 2 arguments
print(pcall(string.rep, "x", nil))  -- expect: false	string.rep expects a numeric argument
print(pcall(string.rep, 5, 2))  -- expect: false	string.rep expects a string argument

function line(width)
  return string.rep("-", width)  -- expect error: not enough memory
end
print(line(3))  -- expect: ---
print(line(9223372036854775807))
