-- expect error 2:7: expected function call
a.b.c d()
