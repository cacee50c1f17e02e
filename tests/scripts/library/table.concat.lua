-- table.concat(t, sep): the printable forms of the elements 1 to #t, with sep between them.
print(table.concat({1, "a", true}, ","), table.concat({"a", "b", "c"}), table.concat({1, 2, 3}, ", "))  -- expect: 1,a,true	abc	1, 2, 3
print("[" .. table.concat({}) .. table.concat({}, ",") .. table.concat({""}) .. "]")  -- expect: []
print(table.concat({"one"}, ","), table.concat({"", ""}, "-"), table.concat({"", "", ""}, "ab"))  -- expect: one	-	abab

-- Every kind of element is rendered.
print(table.concat({-5, 1.5, 2.0, 1 / 3, false, print}, " "))  -- expect: -5 1.5 2 0.333333 false function: print
t = {}
print(table.concat({t, t}, "=") == tostring(t) .. "=" .. tostring(t))  -- expect: true
print(table.concat({"a\0b", "c"}, "\0") == "a\0b\0c", #table.concat({"\0", "\0"}, "\0"))  -- expect: true	3

-- So is the separator, also an explicit nil.
print(table.concat({1, 2, 3}, 0), table.concat({1, 2}, 1.5), table.concat({1, 2}, true))  -- expect: 10203	11.52	1true2
print(table.concat({1, 2, 3}, nil), table.concat({"a", "b"}, t) == "a" .. tostring(t) .. "b")  -- expect: 1nil2nil3	true

-- The sequence ends at the first nil and has no other keys.
print(table.concat({1, 2, nil, 4}, ","), table.concat({nil, 2}, ",") == "")  -- expect: 1,2	true

-- Long results.
t = {}
for i = 1, 100000 do t[i] = "item" .. i end
text = table.concat(t, "; ")
print(#text, text:sub(1, 21), text:sub(-25))  -- expect: 1088893	item1; item2; item3; 	98; item99999; item100000

-- What cannot be held: 2^20 elements of 2^20 bytes are 2^40 bytes.
mega = string.rep("x", 1048576)
t = {}
for i = 1, 1048576 do t[i] = mega end
print(pcall(table.concat, t))  -- expect: false	not enough memory
for i = 1, 1048576 do t[i] = "" end
print(pcall(table.concat, t, mega))  -- expect: false	not enough memory

print(pcall(table.concat))  -- expect: false	table.concat expects between 1 and 2 arguments
print(pcall(table.concat, nil))  -- expect: false	table.concat expects a table

lines = {"first", "second"}
print(table.concat(lines.missing, " "))  -- expect error: table.concat expects a table
