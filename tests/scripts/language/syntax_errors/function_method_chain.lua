-- expect error 2:13: expected '(' after function name
function a:b.c() end
