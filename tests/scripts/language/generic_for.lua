-- Generic for: advances an iterator value; iterator functions do not exist.
print(pcall(function() for x in function() end do end end))  -- expect: false	generic for loop expects an iterator
print(pcall(function() for x in nil, pairs({}) do end end))  -- expect: false	generic for loop expects an iterator
iterators = {("k=v"):gmatch("(k)=(v)"), ipairs({"x"})}
for i = 1, 2 do
  if true then local p, q, r, s = 1, 2, 3, 4 end
  for a, b, c, d in iterators[i] do print(a, b, c, d) end
end
-- expect: k	v	nil	nil
-- expect: 1	x	nil	nil

-- ipairs gives the indices 1 to #t of the call, with the values as they are when the loop gets there.
t = {"a", "b", "c", "d"}
for i, value in ipairs(t) do
  if i == 1 then t[2], t[3], t[5] = "changed", nil, "new" end
  io.write(i, "=", tostring(value), " ")
end
for i in ipairs({1, 2, nil, 4, x = 5}) do io.write(i, " ") end
print("")  -- expect: 1=a 2=changed 3=nil 4=d 1 2 

-- pairs gives the items of the call, whatever is done to the table meanwhile, which sees all of it at once.
function described(iterator)
  local text = ""
  for key, value in iterator do text = text .. " " .. key .. "=" .. value end
  return text
end
accesses = {
  function(t) return t[2] end, function(t) return t.y .. #t end, function(t) return t["x"] end,
  function(t) t[2], t.y = "new", "new" end, function(t) t[3], t.x = nil, nil end,
  function(t) t[4], t.z = "d", "Z" return #t end, function(t) t[2] = t[2] .. "!" end,
  function(t) t[2], t[3] = t[3], t[2] end, function(t) return table.remove(t, 1) end,
  function(t) return table.concat(t, t.x) end, function(t) table.sort(t, function(a, b) return a > b end) end,
  function(t) return described(pairs(t)) end, function(t) for i, v in ipairs(t) do t.last = v end end,
}
for _, access in ipairs(accesses) do
  t = {"a", "b", "c", x = "X", y = "Y"}
  seen, given = "", nil
  iterator = pairs(t)
  for key, value in iterator do
    if key == 2 then given = access(t) or given end
    seen = seen .. value
    if key == "x" then break end
  end
  print(seen .. "|" .. tostring(given) .. "|" .. described(pairs(t)) .. "|" .. described(iterator))
end
-- expect: abcX|b| 1=a 2=b 3=c x=X y=Y| y=Y
-- expect: abcX|Y3| 1=a 2=b 3=c x=X y=Y| y=Y
-- expect: abcX|X| 1=a 2=b 3=c x=X y=Y| y=Y
-- expect: abcX|nil| 1=a 2=new 3=c x=X y=new| y=Y
-- expect: abcX|nil| 1=a 2=b y=Y| y=Y
-- expect: abcX|4| 1=a 2=b 3=c 4=d x=X y=Y z=Z| y=Y
-- expect: abcX|nil| 1=a 2=b! 3=c x=X y=Y| y=Y
-- expect: abcX|nil| 1=a 2=c 3=b x=X y=Y| y=Y
-- expect: abcX|a| 1=b 2=c x=X y=Y| y=Y
-- expect: abcX|aXbXc| 1=a 2=b 3=c x=X y=Y| y=Y
-- expect: abcX|nil| 1=c 2=b 3=a x=X y=Y| y=Y
-- expect: abcX| 1=a 2=b 3=c x=X y=Y| 1=a 2=b 3=c x=X y=Y| y=Y
-- expect: abcX|nil| 1=a 2=b 3=c x=X y=Y last=c| y=Y
t = {1, 2, 3}
for key in pairs(t) do
  for again in pairs(t) do break end
  for again in pairs(t) do t[again + 3] = again end
end
print(#t, described(pairs(t)))  -- expect: 12	 1=1 2=2 3=3 4=1 5=2 6=3 7=4 8=5 9=6 10=7 11=8 12=9
t = {n = 3, text = string.rep("-", 300)}
for key, value in pairs(t) do
  t.text = t.text .. key
  if key == "text" then print(#value, #t.text) end  -- expect: 300	305
end
