-- The position is that of the opening quote; a line feed does not end the string.
-- expect error 3:7: unterminated string literal
print('abc"
print("never")
