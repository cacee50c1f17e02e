-- table.concat(t, sep): the printable forms of the elements 1 to #t, with sep between them.
print(table.concat({1, "a", true}, ","), table.concat({"a", "b", "c"}), table.concat({1, 2, 3}, ", "))  -- expect: 1,a,true	abc	1, 2, 3
print("[" .. table.concat({}) .. table.concat({}, ",") .. table.concat({""}) .. "]")  -- expect: []
print(table.concat({"one"}, ","), table.concat({"", ""}, "-"), table.concat({"", "", ""}, "ab"))  -- expect: one	-	abab

-- Every kind of element is rendered.
print(table.concat({-5, 1.5, 2.0, 1 / 3, false, print}, " "))  -- expect: -5 1.5 2 0.333333 false function: print
print(table.concat({9223372036854775807, -9223372036854775808, 1234567.5}, " "))  -- expect: 9223372036854775807 -9223372036854775808 1.23457e+06
t = {}
print(table.concat({t, t}, "=") == tostring(t) .. "=" .. tostring(t))  -- expect: true
print(table.concat({"a\0b", "c"}, "\0") == "a\0b\0c", #table.concat({"\0", "\0"}, "\0"))  -- expect: true	3

-- So is the separator, also an explicit nil.
print(table.concat({1, 2, 3}, 0), table.concat({1, 2}, 1.5), table.concat({1, 2}, true))  -- expect: 10203	11.52	1true2
print(table.concat({1, 2, 3}, nil), table.concat({"a", "b"}, t) == "a" .. tostring(t) .. "b")  -- expect: 1nil2nil3	true
print(table.concat({"a"}, nil), table.concat({}, nil) == "", table.concat({1, 2}, print))  -- expect: a	true	1function: print2

-- The sequence ends at the first nil and has no other keys.
print(table.concat({1, 2, nil, 4}, ","), table.concat({nil, 2}, ",") == "")  -- expect: 1,2	true
print(table.concat({1, 2, x = 3, [0] = 0, [4] = 4}, ","))  -- expect: 1,2
t = {}
for i = 70, 1, -1 do t[i] = i end
print(#table.concat(t), table.concat(t, ","):sub(-15))  -- expect: 131	,66,67,68,69,70
t[5] = nil
print(table.concat(t, ","))  -- expect: 1,2,3,4
t = {"a", "b", "c"}
table.remove(t, 2)
t[#t + 1] = "d"
print(table.concat(t, ","))  -- expect: a,c,d

-- Long results.
t = {}
for i = 1, 100000 do t[i] = i % 10 end
text = table.concat(t)
print(#text, text:sub(1, 12), text:sub(-3))  -- expect: 100000	123456789012	890
for i = 1, 100000 do t[i] = "item" .. i end
text = table.concat(t, "; ")
print(#text, text:sub(1, 21), text:sub(-25))  -- expect: 1088893	item1; item2; item3; 	98; item99999; item100000
for i = 1, 1000 do t[i] = i / 8 end
for i = 1001, 100000 do t[i] = nil end
text = table.concat(t, " ")
print(#text, text:sub(1, 21), text:sub(-15))  -- expect: 6121	0.125 0.25 0.375 0.5 	.75 124.875 125

-- The result is a string of its own.
t = {"only"}
text = table.concat(t)
text = text .. "!"
print(text, t[1])  -- expect: only!	only
text = table.concat({"a", "b"})
print(text == "ab", ({ab = "found"})[text], text .. "c", text)  -- expect: true	found	abc	ab

-- What cannot be held: 2^20 elements of 2^20 bytes are 2^40 bytes.
mega = string.rep("x", 1048576)
t = {}
for i = 1, 1048576 do t[i] = mega end
print(pcall(table.concat, t))  -- expect: false	not enough memory
for i = 1, 1048576 do t[i] = "" end
print(pcall(table.concat, t, mega))  -- expect: false	not enough memory
print(#table.concat(t))  -- expect: 0

print(pcall(table.concat))  -- expect: false	table.concat expects between 1 and 2 arguments
print(pcall(table.concat, {}, ",", 1))  -- expect: false	table.concat expects between 1 and 2 arguments
print(pcall(table.concat, nil))  -- expect: false	table.concat expects a table
print(pcall(table.concat, "abc", ","))  -- expect: false	table.concat expects a table
print(pcall(table.concat, 1))  -- expect: false	table.concat expects a table

lines = {"first", "second"}
print(
  table.concat(lines, " "))  -- expect: first second
print(table.concat(lines.missing, " "))  -- expect error: table.concat expects a table
