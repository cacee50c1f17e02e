-- expect error 2:6: expected '=' in assignment
a, b + 1
