-- expect error 2:1: expected expression
do print(1) end
