-- Without a semicolon a parenthesis on the next line is a call, here of a number.
local x = 5  -- expect error: attempt to call a number value
(print)("never")
