-- Strings and objects compared; numbers: tests/unit/operators_test.cpp.
-- Strings by unsigned bytes, then by length.
print("a" < "ab", "ab" < "b", "" < "", "Z" < "a", "10" < "9")  -- expect: true	true	false	true	true
print("z" < "é", "a\0b" < "a\0c", "abc" > "abd", "abc" >= "abc")  -- expect: true	true	false	true
print("ab" .. "cd" == "abcd", "a\0b" == "a\0c", "abc" ~= "ab", 1 == "1")  -- expect: true	false	true	false
-- Objects by identity.
t, it = {}, pairs({})
print(t == t, t == {}, it == pairs({}), io.stdout == io.stdout)  -- expect: true	false	false	true
print(print == print, print ~= tostring, nil == false, "true" == true)  -- expect: true	true	false	false
print(pcall(function() return {} >= {} end))  -- expect: false	ordered comparisons require matching numbers or strings
