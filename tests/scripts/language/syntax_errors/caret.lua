-- expect error 2:7: unexpected character '^'
x = 2 ^ 3
