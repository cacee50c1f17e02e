-- expect error 2:14: expected ')' after parameter list
function f(a b) end
