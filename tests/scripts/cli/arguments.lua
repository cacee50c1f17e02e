-- args: a 12 --repl "two words" '' last
-- The global `arg`: the script's path under 0, its arguments from 1 on, all strings.
print(#arg, arg[1], arg[2], arg[3], arg[4], arg[6], arg[7])  -- expect: 6	a	12	--repl	two words	last	nil
print(arg[0], arg[5] == "", arg[2] == "12", arg[-1], arg["1"])  -- expect: {script}	true	true	nil	nil
