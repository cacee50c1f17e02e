-- expect error 2:2: expected function call
f{1}
