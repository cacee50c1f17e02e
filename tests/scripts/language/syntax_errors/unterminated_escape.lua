-- The text ends right after the backslash, without a line feed.
-- expect error 3:7: unterminated string escape
x = 1 "abc\