-- expect error 2:9: expected expression
x = 1 + * 2
