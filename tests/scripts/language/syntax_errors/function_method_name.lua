-- expect error 2:12: expected method name after ':'
function a:() end
