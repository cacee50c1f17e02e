-- expect error 2:5: invalid assignment target
f() = 1
