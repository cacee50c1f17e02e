-- expect error 2:6: expected 'then' after if condition
if x print(x) end
