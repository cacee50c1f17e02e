-- expect error 2:10: expected function name
function (x) return x end
