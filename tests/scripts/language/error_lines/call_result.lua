-- Calling what a call returned.
function f() return 5 end
f(1)
x = f  -- expect error: attempt to call a number value
  (1)
  (2)
