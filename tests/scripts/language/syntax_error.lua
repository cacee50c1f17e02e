-- The whole text is split into tokens before any of it is parsed, and parsed before any of it runs.
print("never")
x = = 1
y = 2 ?  -- expect error 4:7: unexpected character '?'
