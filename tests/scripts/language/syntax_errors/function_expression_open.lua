-- expect error 4:1: expected 'end' after function body
x = function(a)
  return a
