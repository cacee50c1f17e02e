-- expect error 5:1: expected 'end' after function body
function f(a)
  if a then return 1 end
  return 2
