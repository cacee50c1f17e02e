-- expect error 2:3: expected method name after ':'
t:1()
