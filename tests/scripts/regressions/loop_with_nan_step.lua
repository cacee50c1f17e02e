-- A step that is no number ends the loop before its first iteration, in either direction.
big = 1000000000000000000000.5
for i = 1, 5 do big = big * big end
nan = big / big
for i = 5, 1, nan do print("never") end
for i = 1, 5, nan do print("never") end
for i = 1, nan do print("never") end
print("done", nan == nan)  -- expect: done	false
