-- Ordering of numbers and of strings; nothing else can be ordered.
print(1 < 2, 2 < 1, 1 < 1, 1 <= 1, 2 > 1, 1 >= 2)  -- expect: true	false	false	true	true	false
print(-1 < 0, -9223372036854775808 < 9223372036854775807)  -- expect: true	true
print(9223372036854775806 < 9223372036854775807)  -- expect: true
print(1 < 1.5, 1.5 < 2, 2 <= 2.0, 2.0 >= 2, 1.5 > 1.25)  -- expect: true	true	true	true	true

-- Mixed operands are compared as doubles, without the tolerance that equality has.
print(9007199254740993 > 9007199254740992.0)  -- expect: false
print(9007199254740993 <= 9007199254740992.0)  -- expect: true
print(0 < 0.0000000000000001, 0 == 0.0000000000000001)  -- expect: true	true
print(1 < 1.0000000000000002, 1 >= 1.0000000000000002)  -- expect: true	false

-- Strings are compared by unsigned bytes, then by length.
print("a" < "b", "a" < "ab", "ab" < "b", "" < "a", "" < "")  -- expect: true	true	true	true	false
print("Z" < "a", "a" < "B", "10" < "9", "a" <= "a", "b" >= "ab")  -- expect: true	false	true	true	true
print("z" < "é", "~" < "ä")  -- expect: true	true
print("a\0b" < "a\0c", "a" < "a\0", "a\0" < "a\0\0", "a\0z" < "ab")  -- expect: true	true	true	true
print("abc" > "abd", "abc" >= "abc", "abcd" > "abc")  -- expect: false	true	true

-- Comparisons are left associative; the result is a boolean.
print(1 < 2 == true, 1 == 1 == 1, 3 > 2 ~= false)  -- expect: true	false	true

print(pcall(function() return 1 < "2" end))  -- expect: false	ordered comparisons require matching numbers or strings
print(pcall(function() return nil <= nil end))  -- expect: false	ordered comparisons require matching numbers or strings
print(pcall(function() return true >= false end))  -- expect: false	ordered comparisons require matching numbers or strings
print(pcall(function() return {} < {} end))  -- expect: false	ordered comparisons require matching numbers or strings
