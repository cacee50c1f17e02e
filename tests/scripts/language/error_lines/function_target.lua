-- A function declaration fails at the line of its keyword.
a = {}
function a.f() end
function  -- expect error: attempt to assign into a function value
  a.f.g(x)
  return x
end
