-- expect error 2:12: expected '(' after function name
function f return 1 end
