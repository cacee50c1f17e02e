-- expect error 3:1: expected field name after '.'
x = 1.
