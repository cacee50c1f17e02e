-- expect error 2:8: expected expression
t = {1,,2}
