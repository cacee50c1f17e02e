-- expect error 2:11: invalid assignment target
a, b[1]() = 1, 2
