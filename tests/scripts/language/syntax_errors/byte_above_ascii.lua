-- Columns count bytes: each accented letter in the string has two.
-- expect error 4:17: unexpected character '@'
x = "éü" -- é is fine here
y = "éü" .. x @ 1
