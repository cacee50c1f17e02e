-- expect error 2:10: expected local variable name
local a, = 1
