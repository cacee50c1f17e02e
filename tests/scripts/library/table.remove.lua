-- table.remove(t, pos): takes the element at pos (by default the last) out; those behind it move down.
function show(t) print(#t .. ": " .. table.concat(t, " ")) end
t = {1, 2, 3}
print(table.remove(t))  -- expect: 3
show(t)  -- expect: 2: 1 2
t = {1, 2, 3}
print(table.remove(t, 1))  -- expect: 1
show(t)  -- expect: 2: 2 3
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
first, second = table.remove({})
print(first, second)  -- expect: nil	nil
t = {x = 1, [0] = "zero", [-1] = "less"}
print(table.remove(t), table.remove(t, 0), t.x, t[0], t[-1])  -- expect: nil	nil	1	zero	less

-- An explicit nil counts as absent; floats are truncated.
t = {10, 20, 30, 40, 50}
print(table.remove(t, nil), table.remove(t, 2.9), table.remove(t, 1.0), table.remove(t, 0.9))  -- expect: 50	20	10	nil
show(t)  -- expect: 2: 30 40
print(table.remove(t, tonumber("1e300")), table.remove(t, -tonumber("1e300")))  -- expect: nil	nil

-- The sequence ends at the first nil; what stands behind it does not move.
t = {1, 2, nil, 4}
print(table.remove(t), #t, t[4])  -- expect: 2	1	4
print(table.remove(t, 1), #t, t[1], t[4])  -- expect: 1	0	nil	4
t = {1, 2, 3, [5] = 5}
print(table.remove(t, 1))  -- expect: 1
print(#t, t[1], t[2], t[3], t[4], t[5])  -- expect: 2	2	3	nil	nil	5

-- Everything else in the table stays.
t = {1, 2, 3, name = "kept", [1.5 + 0.5] = "two", [100] = "far", [-3] = "negative", [true] = "yes"}
print(table.remove(t, 1), t.name, t[100], t[-3], t[true], #t)  -- expect: 1	kept	far	negative	yes	2

-- Sequences that were filled in another order, or through the hash part.
t = {}
for i = 70, 1, -1 do t[i] = i end
print(#t, table.remove(t, 1), table.remove(t), #t, t[1], t[68], t[69])  -- expect: 70	1	70	68	2	69	nil
t = {}
for i = 200, 1, -1 do t[i] = i * 2 end
print(#t, table.remove(t, 100), #t, t[99], t[100], t[199], t[200])  -- expect: 200	200	199	198	202	400	nil

-- A stack and a queue. The table can grow again behind what was removed.
stack = {}
for i = 1, 1000 do stack[#stack + 1] = i end
sum = 0
while #stack > 0 do sum = sum + table.remove(stack) end
print(sum, #stack, stack[1])  -- expect: 500500	0	nil
queue = {}
next = 1
sum = ""
for round = 1, 5 do
  for i = 1, 3 do
    queue[#queue + 1] = next
    next = next + 1
  end
  sum = sum .. table.remove(queue, 1) .. table.remove(queue, 1) .. " "
end
print(sum, #queue, queue[1], queue[5], queue[6])  -- expect: 12 34 56 78 910 	5	11	15	nil

-- Removing all odd elements while going down.
t = {}
for i = 1, 20 do t[i] = i end
for i = #t, 1, -1 do
  if t[i] % 2 == 1 then table.remove(t, i) end
end
show(t)  -- expect: 10: 2 4 6 8 10 12 14 16 18 20

-- The element stays alive as the result, and is the very one that was stored.
inner = {"inner"}
t = {inner, {"other"}}
print(table.remove(t, 1) == inner, t[1][1], table.remove({{"only"}})[1])  -- expect: true	other	only
t = {function() return "called" end}
print(table.remove(t)(), #t)  -- expect: called	0
t = {1, 2, 3}
t[1], t[2] = table.remove(t), table.remove(t, 1)
show(t)  -- expect: 2: 3 1

print(pcall(table.remove))  -- expect: false	table.remove expects between 1 and 2 arguments
print(pcall(table.remove, {}, 1, 2))  -- expect: false	table.remove expects between 1 and 2 arguments
print(pcall(table.remove, nil))  -- expect: false	table.remove expects a table
print(pcall(table.remove, "abc", 1))  -- expect: false	table.remove expects a table
print(pcall(table.remove, {1}, "1"))  -- expect: false	table.remove expects a numeric argument
print(pcall(table.remove, {1}, true))  -- expect: false	table.remove expects a numeric argument
print(pcall(table.remove, {}, {}))  -- expect: false	table.remove expects a numeric argument

t = {1}
print(table.remove(t), #t,
  table.remove(t, "last"))  -- expect error: table.remove expects a numeric argument
