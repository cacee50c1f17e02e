-- expect error 2:7: expected local variable name
local 5 = 1
