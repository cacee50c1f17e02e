-- expect error 2:10: expected 'in' in generic for loop
for k, v = 1, 2 do end
