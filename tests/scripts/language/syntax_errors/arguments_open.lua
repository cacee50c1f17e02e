-- expect error 2:9: expected ')' after arguments
print(1 2)
