-- expect error 2:8: expected expression
x = 7 // 2
