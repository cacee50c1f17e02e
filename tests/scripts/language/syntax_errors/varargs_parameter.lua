-- expect error 2:15: expected parameter name
function f(a, ...) end
