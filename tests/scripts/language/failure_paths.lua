-- A failure goes from where it happens to the pcall through calls of every form: as statements, returned, stored in
-- locals, as operands, arguments and conditions; through loops, branches and other pcalls.

-- An uncaught error is located at the call of error, whatever the level.
local function fail(text) error(text, 2) end  -- expect error: uncaught
local object = {fail = function(self, text) fail(text) end}
for i, f in ipairs({
  fail,
  function(text) return fail(text) end,
  function(text) local x = fail(text) return x end,
  function(text) local x = 1 x = fail(text) return x end,
  function(text) local x, y = 1, fail(text) return y end,
  function(text) return 1 + fail(text) end,
  function(text) return print(1, fail(text)) end,
  function(text) return 1, fail(text) end,
  function(text) if fail(text) then return 1 end return 2 end,
  function(text) local t = {} t[1] = fail(text) return t end,
  function(text) object:fail(text) end,
  function(text) assert(false, text) end,
  function(text) table.sort({2, 1}, function(a, b) fail(text) end) end,
  function(text)
    for i = 1, 3 do
      local held = {i}
      for key, value in pairs({a = held}) do
        while true do
          local inner = {value}
          fail(text .. i)
        end
      end
    end
  end,
  function(text)
    local held = {text}
    local function inner() held = {held[1]} error(held[1]) end
    inner()
  end,
  function(text)
    local ok, message = pcall(fail, "first")
    fail(message .. ", " .. text)
  end,
}) do
  local ok, message = pcall(f, "e" .. i)
  local again, same = pcall(pcall, f, "e" .. i)
  io.write(tostring(ok), " ", message, again and "" or "?", "; ")
end
print()
-- expect: false e1; false e2; false e3; false e4; false e5; false e6; false e7; false e8; false e9; false e10; false e11; false e12; false e13; false e141; false e15; false first, e16; 

-- Errors of operators, of calls and of the library on the same ways.
local function deep(n, f)
  if n == 0 then return f() end
  local x = deep(n - 1, f)
  return x
end
for i, f in ipairs({
  function() return none + 1 end,
  function() none.x = 1 end,
  function() none() end,
  function() return string.rep({}, 1) end,
  function() error() end,
}) do
  print(pcall(deep, 5, f))
end
-- expect: false	operator '+' expects numbers
-- expect: false	attempt to assign into a nil value
-- expect: false	attempt to call a nil value
-- expect: false	string.rep expects a string argument
-- expect: false	error
print(pcall(error, "native"), pcall(pcall, error, 7))
-- expect: false	true	false	7
-- A message is always a string.
local problem = {}
local ok, message = pcall(error, problem)
print(message == tostring(problem), pcall(assert, false, nil))  -- expect: true	false	nil
local function uncaught()
  local x = fail("uncaught")
end
uncaught()
