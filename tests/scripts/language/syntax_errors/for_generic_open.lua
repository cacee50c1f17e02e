-- expect error 4:1: expected 'end' after generic for loop
for k in pairs(t) do
  for i = 1, 2 do end
