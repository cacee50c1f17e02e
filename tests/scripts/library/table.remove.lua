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
-- The first of a long list is taken out without moving the others, of which nothing shows.
function sum(list)
  local text, n, total = "", 0, 0
  for key, value in pairs(list) do
    n, total = n + 1, (total * 31 + key * 7 + value) % 1000003
    text = key .. "=" .. value
  end
  return #list .. "/" .. n .. "/" .. total .. "/" .. text
end
queue = {}
for i = 1, 300 do queue[i] = i end
for i = 1, 250 do
  if table.remove(queue, 1) ~= i then print("wrong", i) end
end
print(sum(queue))
queue[308], queue[400], queue[290], queue[60] = 1, 2, 3, 4
print(sum(queue))
for i = 51, 280 do queue[#queue + 1] = i end
print(sum(queue), table.remove(queue, 1), sum(queue))
queue[1] = nil
print(#queue, table.remove(queue, 1))
queue[1] = 0
print(#queue, table.remove(queue, 1), table.remove(queue, 1), sum(queue))
queue[200], queue[1] = nil, nil
queue[1] = 5
print(#queue)
queue[200] = 5
print(sum(queue))
for i = 1, 2000 do
  queue[#queue + 1] = i
  table.remove(queue, 1)
end
print(sum(queue))
long = {}
for i = 1, 200 do long[i] = i end
long[150] = nil
for i = 1, 100 do table.remove(long, 1) end
print(sum(long), long[151], long[50])
long[1], long[50], long[201] = nil, 7, 8
long[1] = 9
print(sum(long))
-- expect: 50/50/246635/50=300
-- expect: 50/54/573243/400=2
-- expect: 281/284/916135/400=2	251	280/283/151694/400=2
-- expect: 0	nil
-- expect: 280	0	253	278/281/151261/400=2
-- expect: 199
-- expect: 278/281/676391/400=2
-- expect: 278/281/722767/400=2
-- expect: 49/99/693380/200=200	151	nil
-- expect: 50/101/858872/201=8
