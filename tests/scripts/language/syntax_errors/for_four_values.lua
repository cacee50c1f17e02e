-- expect error 2:16: expected 'do' after numeric for range
for i = 1, 2, 3, 4 do end
