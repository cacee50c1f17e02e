-- expect error 2:9: expected ']' after index expression
x = t[1 2]
