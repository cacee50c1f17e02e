-- expect error 2:9: expected ']' after table key
t = {[1 = 2}
