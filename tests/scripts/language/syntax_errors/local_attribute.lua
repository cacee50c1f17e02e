-- expect error 2:9: expected expression
local x <const> = 1
