-- A key that no table takes is released once, also where its element is only needed for a moment.
keep = {value = "mine"}
t = {}
holder = {keep}
for i = 1, 3 do
  print(pcall(function() return t[holder[1]].x end))
  pcall(function() return #t[holder[1]] end)
  pcall(function() return t[holder[1]][1] end)
end
-- expect: false	table index must be a number, string, or boolean
-- expect: false	table index must be a number, string, or boolean
-- expect: false	table index must be a number, string, or boolean
other = {}
other.value = "other's"
print(keep.value, keep == other)  -- expect: mine	false
print(pcall(function() return t[{}].x end))  -- expect: false	table index must be a number, string, or boolean
