-- The whole text is split into tokens before any of it is parsed.
-- expect error 4:7: unexpected character '?'
x = = 1
y = 2 ?
