-- expect error 2:16: expected local function name
local function () end
