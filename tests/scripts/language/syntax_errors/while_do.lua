-- expect error 2:9: expected 'do' after while condition
while x print(x) end
