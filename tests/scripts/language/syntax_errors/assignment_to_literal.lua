-- expect error 2:3: invalid assignment target
5 = x
