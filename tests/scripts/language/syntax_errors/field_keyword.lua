-- expect error 2:7: expected field name after '.'
x = t.end
