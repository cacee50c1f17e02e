-- expect error 5:1: expected '}' after table constructor
t = {
  x = 1,
  y = 2
