-- expect error 2:5: expected expression
x = [==[ text ]==]
