-- args: a 12 --repl "two words" '' last
-- The global `arg`: the script's path under 0, its arguments from 1 on, all strings.
print(#arg, arg[1], arg[2], arg[3], arg[4], arg[6], arg[7])  -- expect: 6	a	12	--repl	two words	last	nil
print(arg[5] == "", #arg[5])  -- expect: true	0
print(type(arg), type(arg[0]), type(arg[2]), arg[2] == "12", arg[2] == 12)  -- expect: table	string	string	true	false
print(arg[0])  -- expect: {script}
print(arg[-1], arg["1"], arg["0"])  -- expect: nil	nil	nil
for i, v in ipairs(arg) do print(i, "[" .. v .. "]") end
-- expect: 1	[a]
-- expect: 2	[12]
-- expect: 3	[--repl]
-- expect: 4	[two words]
-- expect: 5	[]
-- expect: 6	[last]

-- It is an ordinary table in an ordinary global.
arg[1] = "changed"
arg[7] = "added"
print(#arg, arg[1])  -- expect: 7	changed
arg = nil
print(arg)  -- expect: nil
