-- mode: container
-- args: a "two words" --repl
-- A container runs like its script. `arg` holds the container's path instead of the script's, and the arguments behind
-- it; errors name the script that was compiled.
print(#arg, arg[1], arg[2], arg[3], arg[4])  -- expect: 3	a	two words	--repl	nil
print(arg[0], #"ä", #[[a
b]])  -- expect: {tmp}/c.tlbc	2	3
local t
t.x = 1  -- expect error: attempt to assign into a nil value
