-- expect error 4:3: expected 'then' after elseif condition
if x then
elseif y
  print(y) end
