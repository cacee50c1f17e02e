-- Generic for: advances an iterator value; iterator functions do not exist.
list = {"a", "b"}
for i, list, extra in ipairs(list) do print(i, list, extra) end
-- expect: 1	a	nil
-- expect: 2	b	nil

-- An iterator keeps its position: a second loop goes on where the first one stopped.
it = ipairs({"one", "two", "three"})
for i, v in it do
  if i == 2 then break end
end
for i, v in it do print(i, v) end  -- expect: 3	three
for i in it do print("exhausted") end
for i in ipairs({"a"}) do print(i) end  -- expect: 1

print(pcall(function() for x in function() end do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in nil, pairs({}) do end end))  -- expect: false	generic for loop expects an iterator
iterators = {("k=v"):gmatch("(k)=(v)"), ipairs({"x"})}
for i = 1, 2 do
  if true then local p, q, r, s = 1, 2, 3, 4 end
  for a, b, c, d in iterators[i] do print(a, b, c, d) end
end
-- expect: k	v	nil	nil
-- expect: 1	x	nil	nil
