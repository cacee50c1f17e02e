-- table.remove(t, pos): takes the element at pos (by default the last) out; those behind it move down.
function show(t) print(#t .. ": " .. table.concat(t, " ")) end
t = {1, 2, 3}
print(table.remove(t))  -- expect: 3
show(t)  -- expect: 2: 1 2
t = {"a", "b", "c", "d", "e"}
print(table.remove(t, 2), table.remove(t, 3), table.remove(t, 3))  -- expect: b	d	e
show(t)  -- expect: 2: a c
print(t[3], t[4], t[5])  -- expect: nil	nil	nil

-- Nothing to take: one nil, the table unchanged.
print(table.remove({}), table.remove({}, 1), table.remove({}, 0))  -- expect: nil	nil	nil
t = {1, 2}
print(table.remove(t, 5), table.remove(t, 3), table.remove(t, 0), table.remove(t, -1))  -- expect: nil	nil	nil	nil
print(table.remove(t, 9223372036854775807), table.remove(t, -9223372036854775808))  -- expect: nil	nil
show(t)  -- expect: 2: 1 2

-- An explicit nil counts as absent; floats are truncated.
t = {10, 20, 30, 40, 50}
print(table.remove(t, nil), table.remove(t, 2.9), table.remove(t, 1.0), table.remove(t, 0.9))  -- expect: 50	20	10	nil
show(t)  -- expect: 2: 30 40
print(table.remove(t, tonumber("1e300")), table.remove(t, -tonumber("1e300")))  -- expect: nil	nil

-- The sequence ends at the first nil; what stands behind it does not move.
t = {1, 2, nil, 4}
print(table.remove(t), #t, t[4])  -- expect: 2	1	4
print(table.remove(t, 1), #t, t[1], t[4])  -- expect: 1	0	nil	4

-- Everything else in the table stays.
t = {1, 2, 3, name = "kept", [1.5 + 0.5] = "two", [100] = "far", [-3] = "negative", [true] = "yes"}
print(table.remove(t, 1), t.name, t[100], t[-3], t[true], #t)  -- expect: 1	kept	far	negative	yes	2

-- Sequences that were filled in another order, or through the hash part.
t = {}
for i = 70, 1, -1 do t[i] = i end

t = {}
for i = 200, 1, -1 do t[i] = i * 2 end
print(#t, table.remove(t, 100), #t, t[99], t[100], t[199], t[200])  -- expect: 200	200	199	198	202	400	nil

print(pcall(table.remove))  -- expect: false	table.remove expects between 1 and 2 arguments
print(pcall(table.remove, nil))  -- expect: false	table.remove expects a table
print(pcall(table.remove, {1}, "1"))  -- expect: false	table.remove expects a numeric argument

t = {1}
print(table.remove(t), #t,
  table.remove(t, "last"))  -- expect error: table.remove expects a numeric argument
