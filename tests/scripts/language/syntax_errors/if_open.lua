-- expect error 6:1: expected 'end' after if statement
if x then
  print(1)
else
  print(2)
