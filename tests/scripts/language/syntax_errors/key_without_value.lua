-- expect error 2:10: expected '=' after table key
t = {[1] 2}
