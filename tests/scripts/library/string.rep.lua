-- string.rep(s, n): s, n times. There is no separator.
long = string.rep("0123456789", 100000)
print(string.rep("a\0", 2) == "a\0a\0", #long, long:sub(-2), long:sub(499999, 500003))  -- expect: true	1000000	89	89012
-- One repetition is the string itself, which appending to the copy does not change.
original = "text"
copy = string.rep(original, 1)
copy = copy .. "!"
print(original, copy)  -- expect: text	text!

-- What cannot be held is an error that can be caught; nothing times anything is nothing.
print(#string.rep("", 9223372036854775807), #string.rep("", tonumber("1e300")))  -- expect: 0	0
print(pcall(string.rep, "abcdefghi", 1152921504606846976))  -- expect: false	not enough memory
print(string.rep("x", 9223372036854775807))  -- expect error: not enough memory
