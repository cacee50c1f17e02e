-- expect error 3:1: expected function call
x
