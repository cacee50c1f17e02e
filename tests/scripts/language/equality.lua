-- == and ~= compare any two values; only a mixed integer and float pair has a tolerance.
print(1 == 1, 1 == 2, 1 ~= 2, 1 ~= 1)  -- expect: true	false	true	false
print(nil == nil, nil == false, false == false, true == false)  -- expect: true	false	true	false
print(1 == "1", 0 == false, "" == nil, "true" == true)  -- expect: false	false	false	false
print(1 ~= "1", nil ~= false)  -- expect: true	true

-- Integers exactly, floats exactly, mixed pairs within the machine epsilon.
print(9223372036854775807 == 9223372036854775806)  -- expect: false
print(1 == 1.0, 1.0 == 1, 1.0 == 1.0, 0.5 == 0.5)  -- expect: true	true	true	true
print(1 == 1.0000000000000002, 1.0000000000000002 == 1)  -- expect: true	true
print(1.0 == 1.0000000000000002, 1.0 ~= 1.0000000000000002)  -- expect: false	true
print(1 == 1.0000000000000005, 0 == 0.0000000000000002)  -- expect: false	true
print(0 == 0.0000000000000003, 0.0 == 0.0000000000000002)  -- expect: false	false
print(9007199254740993 == 9007199254740992.0)  -- expect: true
print(9007199254740993 == 9007199254740992)  -- expect: false

-- Strings by bytes, embedded zeros included.
print("abc" == "abc", "abc" == "abd", "abc" == "ab", "" == "")  -- expect: true	false	false	true
print("a\0b" == "a\0b", "a\0b" == "a\0c", "a" == "a\0")  -- expect: true	false	false
print("ab" .. "cd" == "abcd", 'quote' == "quote", [[x]] == "x")  -- expect: true	true	true
print(1 .. "" == "1", 1.0 .. "" == "1")  -- expect: true	true

-- Objects by identity.
t = {}
u = t
print(t == t, t == u, t == {}, {} == {}, {1} == {1})  -- expect: true	true	false	false	false
print(print == print, print == tostring, string.rep == ("x").rep)  -- expect: true	false	true
function f() end
g = f
print(f == g, f == function() end, f ~= g)  -- expect: true	false	false
it = pairs(t)
same = it
print(it == same, it == pairs(t), io.stdout == io.stdout, io.stdout == io.stderr)  -- expect: true	false	true	false
