-- expect error 2:28: expected expression
if x then y = 1 else y = 2 else y = 3 end
