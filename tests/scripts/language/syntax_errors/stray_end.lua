-- expect error 3:1: expected expression
if x then end
end
