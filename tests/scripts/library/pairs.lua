-- pairs(t): a snapshot of the entries, integer keys of the dense part first and in order, then the others in the order
-- in which they were added; what is done to the table meanwhile: language/generic_for. ipairs(t): indices 1 to #t, the
-- limit fixed at the start, the values read as the loop goes.
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

print(items(ipairs({1, 2, nil, 4})), items(ipairs({x = 1, [0] = 0})))  -- expect: [1=1 2=2 ]	[]
-- Appending does not lengthen the loop; removed values are nil, and the loop still reaches the limit.
t = {"a", "b", "c", "d"}
print(items(ipairs(t), function(i) if i == 1 then t[2], t[3], t[5] = "changed", nil, "new" end end))
-- expect: [1=a 2=changed 3=nil 4=d ]
print(type(pairs({})), type(ipairs({})))  -- expect: iterator	iterator
