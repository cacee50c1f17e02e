-- expect error 2:5: expected loop variable name
for 1 = 1, 2 do end
