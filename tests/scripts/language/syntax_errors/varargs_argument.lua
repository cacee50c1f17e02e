-- expect error 2:7: expected expression
print(...)
