-- mode: container
-- args: a "two words" --repl
-- A container runs like its script. `arg` holds the container's path instead of the script's, and the arguments behind
-- it.
print(#arg, arg[1], arg[2], arg[3], arg[4])  -- expect: 3	a	two words	--repl	nil
print(arg[0])  -- expect: {tmp}/c.tlbc
print(#"ä", "ä", #[[a
b]])  -- expect: 2	ä	3
