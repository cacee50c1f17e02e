-- expect error 2:17: expected '(' after function name
local function a.b() end
