-- expect error 2:8: expected function call
repeat x = 1 until x
