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

-- Entries that are nil are no items.
print(keys({1, nil, 3, nil, 5}), keys({nil, nil}), keys({a = nil, b = 2}))  -- expect: [1=1 3=3 5=5 ]	[]	[b=2 ]
t = {1, 2, 3, x = "x", y = "y"}
t[2] = nil
t.x = nil
print(keys(t))  -- expect: [1=1 3=3 y=y ]

-- Overwriting keeps the place.
t = {a = 1, b = 2, c = 3}
t.a = 10
t.c = 30
print(keys(t))  -- expect: [a=10 b=2 c=30 ]

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

-- One value comes back, of a kind of its own.
one, two = pairs({})
print(type(one), two)  -- expect: iterator	nil

print(pcall(pairs))  -- expect: false	pairs expects 1 argument
print(pcall(pairs, nil))  -- expect: false	pairs expects a table

settings = nil
for k in
    pairs(settings) do  -- expect error: pairs expects a table
  print(k)
end
