-- pairs(t): a snapshot of the entries, integer keys of the dense part first and in order, then the others in the order
-- in which they were added. ipairs(t): indices 1 to #t, the limit fixed at the start, the values read as the loop goes.
function items(it, change)
  local text = ""
  for k, v in it do
    text = text .. tostring(k) .. "=" .. tostring(v) .. " "
    if change then change(k) end
  end
  return "[" .. text .. "]"
end
print(items(pairs({})), items(pairs({x = 1, "a", nil, y = 2, "b"})))  -- expect: []	[1=a 3=b x=1 y=2 ]
print(items(pairs({z = 1, y = 2, [true] = 4, [0] = 5, [-1] = 6})))  -- expect: [z=1 y=2 true=4 0=5 -1=6 ]

-- Keys up to 64, and keys at most 8 past the dense end, are dense; others wait among the rest until the dense part
-- grows over them.
t = {first = 1}
t[64], t[73], t[72] = "dense", "far", "reached"
print(items(pairs(t)))  -- expect: [64=dense 72=reached first=1 73=far ]
t[80] = "grown"
print(items(pairs(t)))  -- expect: [64=dense 72=reached 73=far 80=grown first=1 ]

-- The running loop sees the entries as they were.
t = {1, 2, x = "old"}
function change() t[1], t[2], t.x, t.added, t[3] = "new", nil, nil, "added", "third" end
print(items(pairs(t), change), items(pairs(t)))  -- expect: [1=1 2=2 x=old ]	[1=new 3=third added=added ]

print(items(ipairs({1, 2, nil, 4})), items(ipairs({x = 1, [0] = 0})))  -- expect: [1=1 2=2 ]	[]
-- Appending does not lengthen the loop; removed values are nil, and the loop still reaches the limit.
t = {"a", "b", "c", "d"}
print(items(ipairs(t), function(i) if i == 1 then t[2], t[3], t[5] = "changed", nil, "new" end end))
-- expect: [1=a 2=changed 3=nil 4=d ]
print(type(pairs({})), type(ipairs({})))  -- expect: iterator	iterator
