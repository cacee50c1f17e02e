-- expect error 2:3: expected function call
x == 1
