-- expect error 2:6: expected 'then' after if condition
if x = 1 then end
