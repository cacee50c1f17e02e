-- table.concat(t, sep): the printable forms of the elements 1 to #t, with sep between them.
print("[" .. table.concat({}) .. table.concat({}, ",") .. table.concat({""}, ",") .. "]")  -- expect: []
print(table.concat({"", "", ""}, "ab"), table.concat({-5, 2.0, 1 / 3, false, print}, " "))  -- expect: abab	-5 2 0.333333 false function: print
t = {}
print(table.concat({t, t}, "=") == tostring(t) .. "=" .. tostring(t))  -- expect: true

-- The separator is rendered like an element, also an explicit nil.
print(table.concat({1, 2, 3}, 0), table.concat({1, 2}, 1.5), table.concat({1, 2, 3}, nil))  -- expect: 10203	11.52	1nil2nil3

-- Long results, and what cannot be held: 2^20 elements of 2^20 bytes are 2^40 bytes.
for i = 1, 100000 do t[i] = "item" .. i end
text = table.concat(t, "; ")
print(#text, text:sub(1, 21), text:sub(-25))  -- expect: 1088893	item1; item2; item3; 	98; item99999; item100000
mega = string.rep("x", 1048576)
for i = 1, 1048576 do t[i] = mega end
print(pcall(table.concat, t))  -- expect: false	not enough memory
for i = 1, 1048576 do t[i] = "" end
print(pcall(table.concat, t, mega))  -- expect: false	not enough memory
