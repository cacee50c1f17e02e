-- A failure goes from where it happens to the pcall through calls of every form, loops, branches and other pcalls. More
-- of the same: tests/fuzz/script_generator.cpp.

-- An uncaught error is located at the call of error, whatever the level.
local function fail(text) error(text, 2) end  -- expect error: uncaught
local object = {fail = function(self, text) fail(text) end}
for i, f in ipairs({
  fail,
  function(text) return fail(text) end,
  function(text) local x = fail(text) return x end,
  function(text) return print(1, fail(text)) end,
  function(text) if fail(text) then return 1 end return 2 end,
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
-- expect: false e1; false e2; false e3; false e4; false e5; false e6; false e7; false e8; false e91; false e10; false first, e11; 

-- Errors of operators, of calls and of the library on the same ways.
local function deep(n, f)
  if n == 0 then return f() end
  local x = deep(n - 1, f)
  return x
end
for i, f in ipairs({
  function() none() end,
  function() return string.rep({}, 1) end,
  function() error() end,
}) do
  print(pcall(deep, 5, f))
end
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
