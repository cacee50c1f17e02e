-- pcall itself is checked in the calling script; its count error has no location.
print(pcall(function() return "first" end))  -- expect: true	first
pcall()
-- expect error bare: pcall expects at least 1 arguments
