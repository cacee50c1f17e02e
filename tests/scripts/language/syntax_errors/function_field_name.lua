-- expect error 2:12: expected field name after '.'
function a.() end
