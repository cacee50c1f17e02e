-- expect error 3:1: expected expression
x =
