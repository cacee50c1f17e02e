-- "#": bytes of a string, leading non-nil entries of a table.
print(#"", #"abc", #"a\0b", #"é", #("x" .. 12))  -- expect: 0	3	3	2	3
print(#{}, #{1}, #{1, 2, 3}, #{n = 1}, #{{}, {}})  -- expect: 0	1	3	0	2

-- The count stops at the first nil.
print(#{1, 2, nil, 4}, #{nil, 2}, #{nil}, #{1, nil}, #{1, nil, 3, nil, 5})  -- expect: 2	0	0	1	1
t = {1, 2, 3, 4, 5}
t[3] = nil
print(#t)  -- expect: 2
t[3] = 30
print(#t)  -- expect: 5
t[1] = nil
print(#t)  -- expect: 0
t[1] = false
print(#t)  -- expect: 5

-- Appending and removing at the end.
t = {}
for i = 1, 200 do t[#t + 1] = i * i end
for i = 1, 150 do t[#t] = nil end
print(#t, t[50], t[51])  -- expect: 50	2500	nil

-- Keys other than 1, 2, 3, ... do not count.
t = {[0] = "zero", [-1] = "minus", x = "x", [true] = "b", [2] = "two"}
print(#t)  -- expect: 0
t[1.0] = "one"
print(#t)  -- expect: 2

-- An entry beyond the dense part is counted when the part before it is complete.
t = {}
t[65] = "far"
t[66] = "farther"
print(#t)  -- expect: 0
for i = 1, 63 do t[i] = i end
print(#t)  -- expect: 63
t[64] = 64
print(#t, t[65], t[66])  -- expect: 66	far	farther
t[65] = nil
print(#t, t[66])  -- expect: 64	farther
t = {}
for i = 100, 1, -1 do t[i] = i end
print(#t)  -- expect: 100
t[80] = nil
print(#t)  -- expect: 79

size = 1 +
  #missing  -- expect error: length operator expects a string or table
