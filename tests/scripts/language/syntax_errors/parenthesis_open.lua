-- expect error 3:1: expected ')' after expression
x = (1 + 2 * 3
print(x)
