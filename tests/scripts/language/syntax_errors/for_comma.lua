-- expect error 2:11: expected ',' after numeric for start value
for i = 1 do end
