-- expect error 5:1: expected 'end' after while loop
while true do
  if x then break end
  x = 1
