-- expect error 2:25: expected 'do' after generic for iterator
for k, v in pairs(t), 1 print(k) end
