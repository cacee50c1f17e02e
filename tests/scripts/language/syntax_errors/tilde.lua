print("never")  -- expect error 2:7: unexpected '~'
x = 1 ~ 2
