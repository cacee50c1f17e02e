-- expect error 4:1: expected 'end' after numeric for loop
for i = 1, 2 do
  print(i)
