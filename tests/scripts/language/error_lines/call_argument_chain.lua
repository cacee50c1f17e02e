-- Chains inside the arguments of a chain are separate.
function f(x) return x end
x = f
  (1
    + f(2),
    f(
      undefined(3)  -- expect error: attempt to call a nil value
    ))
