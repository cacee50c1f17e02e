-- ipairs(t): indices 1 to #t, the limit fixed at the start, the values read as the loop goes.
for i, v in ipairs({"a", "b", "c"}) do print(i, v) end
-- expect: 1	a
-- expect: 2	b
-- expect: 3	c
for i, v in ipairs({1, 2, nil, 4}) do print(i, v) end
-- expect: 1	1
-- expect: 2	2
for i, v in ipairs({nil, 2}) do print("never") end
for i, v in ipairs({x = 1, [0] = 0, [-1] = 1}) do print("never") end
for i, v in ipairs({false, 0}) do print(i, v) end
-- expect: 1	false
-- expect: 2	0

-- Appending does not lengthen the loop.
t = {1, 2}
for i, v in ipairs(t) do
  t[#t + 1] = v * 10
  print(i, v)
end
-- expect: 1	1
-- expect: 2	2
print(#t, t[3], t[4])  -- expect: 4	10	20

-- Values are read when their turn comes; removed ones are nil, the loop still reaches the limit.
t = {"a", "b", "c", "d"}
for i, v in ipairs(t) do
  print(i, v)
  if i == 1 then
    t[2] = "changed"
    t[3] = nil
  end
end
-- expect: 1	a
-- expect: 2	changed
-- expect: 3	nil
-- expect: 4	d
t = {}
it = ipairs(t)
t[1] = "too late"
for i, v in it do print("never") end
t = {"first", "second"}
it = ipairs(t)
t[1], t[2] = nil, "replaced"
for i, v in it do print(i, v) end
-- expect: 1	nil
-- expect: 2	replaced

-- Entries past the dense part belong to the sequence too.
t = {}
t[65] = 65
t[66] = 66
for i = 1, 64 do t[i] = i end
count, sum = 0, 0
for i, v in ipairs(t) do
  count = count + 1
  sum = sum + v
end
print(count, sum)  -- expect: 66	2211

-- Two loops over one table are independent.
t = {1, 2, 3}
for i in ipairs(t) do
  local row = ""
  for j, v in ipairs(t) do row = row .. i * v .. " " end
  print("[" .. row .. "]")
end
-- expect: [1 2 3 ]
-- expect: [2 4 6 ]
-- expect: [3 6 9 ]

one, two = ipairs({})
print(type(one), two)  -- expect: iterator	nil

print(pcall(ipairs))  -- expect: false	ipairs expects 1 argument
print(pcall(ipairs, {}, 1))  -- expect: false	ipairs expects 1 argument
print(pcall(ipairs, nil, nil))  -- expect: false	ipairs expects 1 argument
print(pcall(ipairs, nil))  -- expect: false	ipairs expects a table
print(pcall(ipairs, "abc"))  -- expect: false	ipairs expects a table
print(pcall(ipairs, ipairs({})))  -- expect: false	ipairs expects a table

function each(list)
  return ipairs(list)  -- expect error: ipairs expects a table
end
for i, v in each(42) do print(v) end
