-- expect error 2:9: expected expression
print(1))
