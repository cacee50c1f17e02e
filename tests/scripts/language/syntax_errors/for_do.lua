-- expect error 2:17: expected 'do' after numeric for range
for i = 1, 2, 3 print(i) end
