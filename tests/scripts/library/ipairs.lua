-- ipairs(t): indices 1 to #t, the limit fixed at the start, the values read as the loop goes.
function items(it, change)
  local text = ""
  for i, v in it do
    text = text .. i .. "=" .. tostring(v) .. " "
    if change then change(i) end
  end
  return "[" .. text .. "]"
end
print(items(ipairs({1, 2, nil, 4})), items(ipairs({x = 1, [0] = 0, [-1] = 1})))  -- expect: [1=1 2=2 ]	[]

-- Appending does not lengthen the loop; removed values are nil, and the loop still reaches the limit.
t = {"a", "b", "c", "d"}
print(items(ipairs(t), function(i) if i == 1 then t[2], t[3] = "changed", nil end end))
-- expect: [1=a 2=changed 3=nil 4=d ]
t = {1, 2}
print(items(ipairs(t), function(i) t[#t + 1] = i * 10 end), #t)  -- expect: [1=1 2=2 ]	4
t = {}
it = ipairs(t)
t[1] = "too late"
print(items(it))  -- expect: []

-- Entries past the dense part belong to the sequence too.
t = {}
t[65], t[66] = 65, 66
for i = 1, 64 do t[i] = i end
print(items(ipairs(t)):sub(-20))  -- expect:  64=64 65=65 66=66 ]

one, two = ipairs({})
print(type(one), two)  -- expect: iterator	nil
print(pcall(ipairs))  -- expect: false	ipairs expects 1 argument

function each(list)
  return ipairs(list)  -- expect error: ipairs expects a table
end
for i, v in each(42) do print(v) end
