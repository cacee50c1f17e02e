-- expect error 2:8: expected '}' after table constructor
t = {1 2}
