-- pairs(t): a snapshot of the entries, integer keys of the dense part first and in order, then
-- the others in the order in which they were added.
function keys(t)
  local text = ""
  for k, v in pairs(t) do text = text .. tostring(k) .. "=" .. tostring(v) .. " " end
  return "[" .. text .. "]"
end
print(keys({}), keys({10, 20, 30}))  -- expect: []	[1=10 2=20 3=30 ]
print(keys({x = 1, "a", y = 2, "b"}))  -- expect: [1=a 2=b x=1 y=2 ]
print(keys({z = 1, y = 2, x = 3, [true] = 4, [0] = 5, [-1] = 6}))  -- expect: [z=1 y=2 x=3 true=4 0=5 -1=6 ]
print(keys({[3] = "c", [2] = "b", [1] = "a"}))  -- expect: [1=a 2=b 3=c ]

-- Entries that are nil are no items.
print(keys({1, nil, 3, nil, 5}), keys({nil, nil}), keys({a = nil, b = 2}))  -- expect: [1=1 3=3 5=5 ]	[]	[b=2 ]
t = {1, 2, 3, x = "x", y = "y"}
t[2] = nil
t.x = nil
print(keys(t))  -- expect: [1=1 3=3 y=y ]
t = {[5] = 5}
print(keys(t))  -- expect: [5=5 ]

-- Overwriting keeps the place.
t = {a = 1, b = 2, c = 3}
t.a = 10
t.c = 30
print(keys(t))  -- expect: [a=10 b=2 c=30 ]
t.d = 4
print(keys(t))  -- expect: [a=10 b=2 c=30 d=4 ]

-- Keys up to 64, and keys at most 8 past the dense end, are dense; others wait among the rest
-- until the dense part grows over them.
t = {}
t.first = 1
t[64] = "dense"
t[65] = "near"
t[74] = "far"
t[73] = "reached"
print(keys(t))  -- expect: [64=dense 65=near 73=reached first=1 74=far ]
t[80] = "grown"
print(keys(t))  -- expect: [64=dense 65=near 73=reached 74=far 80=grown first=1 ]
t = {}
t[100] = "a"
t[65] = "b"
t[1] = "c"
print(keys(t))  -- expect: [1=c 100=a 65=b ]
t[60] = "d"
print(keys(t))  -- expect: [1=c 60=d 100=a 65=b ]
t[66] = "e"
print(keys(t))  -- expect: [1=c 60=d 65=b 66=e 100=a ]
t[65] = "f"
print(keys(t), #t)  -- expect: [1=c 60=d 65=f 66=e 100=a ]	1

-- The running loop sees the entries as they were.
t = {1, 2, x = "old"}
for k, v in pairs(t) do
  print(k, v)
  t[1], t[2], t.x, t.added, t[3] = "new", nil, nil, "added", "third"
end
-- expect: 1	1
-- expect: 2	2
-- expect: x	old
print(keys(t))  -- expect: [1=new 3=third added=added ]
t = {1, 2, 3}
it = pairs(t)
t[1], t[2], t[3], t[4] = nil, nil, nil, nil
sum = 0
for k, v in it do sum = sum + v end
print(sum, keys(t))  -- expect: 6	[]
inner = {0}
for k, v in pairs({inner}) do
  inner[1] = "shared"
  print(v == inner, v[1])
end
-- expect: true	shared

-- Clearing while walking.
t = {a = 1, b = 2, c = 3, 4, 5}
for k in pairs(t) do t[k] = nil end
print(keys(t))  -- expect: []

-- One value comes back, of a kind of its own.
one, two = pairs({})
print(type(one), two)  -- expect: iterator	nil
print(one == one, one == pairs({}), tostring(one) == tostring(one))  -- expect: true	false	true
print(tostring(one):sub(1, 12), ("" .. one):sub(1, 9))  -- expect: iterator: 0x	iterator:

print(pcall(pairs))  -- expect: false	pairs expects 1 argument
print(pcall(pairs, {}, {}))  -- expect: false	pairs expects 1 argument
print(pcall(pairs, nil))  -- expect: false	pairs expects a table
print(pcall(pairs, "abc"))  -- expect: false	pairs expects a table
print(pcall(pairs, 5))  -- expect: false	pairs expects a table
print(pcall(pairs, one))  -- expect: false	pairs expects a table

settings = nil
for k in
    pairs(settings) do  -- expect error: pairs expects a table
  print(k)
end
