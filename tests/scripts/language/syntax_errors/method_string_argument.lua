-- expect error 2:5: expected '(' before arguments
s:m "text"
