-- table.remove(t, pos): takes the element at pos (by default the last) out; those behind it move down.
function show(t) return #t .. ": " .. table.concat(t, " ") end
t = {"a", "b", "c", "d", "e"}
print(table.remove(t), table.remove(t, 2), table.remove(t, 3), show(t), t[3])  -- expect: e	b	d	2: a c	nil
-- Nothing to take: one nil, the table unchanged. An explicit nil counts as absent; floats are truncated.
print(table.remove(t, 5), table.remove(t, 3), table.remove(t, 0), table.remove({}))  -- expect: nil	nil	nil	nil
print(table.remove(t, 9223372036854775807), table.remove(t, -tonumber("1e300")), show(t))  -- expect: nil	nil	2: a c
t = {10, 20, 30, 40, 50}
print(table.remove(t, nil), table.remove(t, 2.9), table.remove(t, 0.9), show(t))  -- expect: 50	20	nil	3: 10 30 40
-- The sequence ends at the first nil; what stands behind it does not move, nor does anything else.
t = {1, 2, nil, 4, name = "kept", [100] = "far"}
print(table.remove(t, 1), #t, t[1], t[2], t[4], t.name, t[100])  -- expect: 1	1	2	nil	4	kept	far
-- A sequence that reaches into the hash part.
t = {}
for i = 200, 1, -1 do t[i] = i * 2 end
print(table.remove(t, 100), #t, t[99], t[100], t[199], t[200])  -- expect: 200	199	198	202	400	nil
