-- Without arguments only the path is there.
print(#arg, arg[1], type(arg[0]))  -- expect: 0	nil	string
count = 0
for k, v in pairs(arg) do count = count + 1 end
print(count)  -- expect: 1
