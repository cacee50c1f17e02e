-- The position is that of the first bracket.
-- expect error 3:5: unterminated long string literal
x = [[abc]
] ] print("never")
