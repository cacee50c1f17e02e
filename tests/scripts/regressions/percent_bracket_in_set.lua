-- `%]` ends a set early; the rest of it can be an alternation, a counted repetition or an escape.
print(string.find("xxb]", "[a%]|b]"))  -- expect: 3	4
print(string.find("xxb]", "^[a%]|b]"))  -- expect: 3	4
print(string.find("q b]", "[a%]|b]+"))  -- expect: 3	4
print(string.find("aa]", "[a%]{2}]"))  -- expect: 1	3
print(string.find("x]", "[a%]{0}]"))  -- expect: 2	2
print(string.find("a|b", "[|]+"))  -- expect: 2	2
