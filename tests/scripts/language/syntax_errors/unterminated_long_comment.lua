-- The position is the one after the brackets.
-- expect error 3:12: unterminated long string literal
x = 1  --[[ not closed ]
print("never")
