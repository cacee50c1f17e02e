-- A failure goes from where it happens to the pcall through calls of every form: as statements, returned, stored in
-- locals, as operands, arguments and conditions; through loops, branches and other pcalls.

local function fail(text) error(text) end  -- expect error: uncaught
local function returned(text) return fail(text) end
local function stored(text) local x = fail(text) return x end
local function storedAgain(text) local x = 1 x = fail(text) return x end
local function several(text) local x, y = 1, fail(text) return y end
local function operand(text) return 1 + fail(text) end
local function argument(text) return tostring(fail(text)) end
local function expanded(text) return print(1, fail(text)) end
local function listed(text) return 1, fail(text) end
local function condition(text) if fail(text) then return 1 end return 2 end
local function looped(text)
  for i = 1, 3 do
    local held = {i}
    for key, value in pairs({a = held}) do
      while true do
        local inner = {value}
        fail(text .. i)
      end
    end
  end
end
local function captured(text)
  local held = {text}
  local function inner() held = {held[1]} error(held[1]) end
  inner()
end
local function element(text) local t = {} t[1] = fail(text) return t end
local function method(text)
  local o = {}
  function o:fail(inner) fail(inner) end
  o:fail(text)
end
local function asserted(text) assert(false, text) end
local function nested(text)
  local ok, message = pcall(fail, "first")
  fail(message .. ", " .. text)
end
local function sorted(text) table.sort({2, 1}, function(a, b) fail(text) end) end

for i, f in ipairs({fail, returned, stored, storedAgain, several, operand, argument, expanded, listed, condition,
                    looped, captured, element, method, asserted, nested, sorted}) do
  local ok, message = pcall(f, "e" .. i)
  local again, same = pcall(pcall, f, "e" .. i)
  io.write(tostring(ok), " ", message, again and "" or "?", "; ")
end
print()
-- expect: false e1; false e2; false e3; false e4; false e5; false e6; false e7; false e8; false e9; false e10; false e111; false e12; false e13; false e14; false e15; false first, e16; false e17; 

-- Errors of operators, of calls and of the library on the same ways.
local function deep(n, f)
  if n == 0 then return f() end
  local x = deep(n - 1, f)
  return x
end
local none
for i, f in ipairs({
  function() return none.x end,
  function() none.x = 1 end,
  function() return none + 1 end,
  function() return none() end,
  function() none() end,
  function() return none:m() end,
  function() return string.rep({}, 1) end,
  function() string.rep("x") end,
  function() error() end,
  function() error({}) end,
  function() return deep(1, none) end,
}) do
  local ok, message = pcall(deep, 5, f)
  if i == 10 then message = string.sub(message, 1, 6) end
  print(message)
end
-- expect: attempt to index a nil value
-- expect: attempt to assign into a nil value
-- expect: operator '+' expects numbers
-- expect: attempt to call a nil value
-- expect: attempt to call a nil value
-- expect: attempt to index a nil value
-- expect: string.rep expects a string argument
-- expect: string.rep expects 2 arguments
-- expect: error
-- expect: table:
-- expect: attempt to call a nil value

local function last(text) return text, fail(text) end
local function uncaught()
  local x = last("uncaught")
end
print(pcall(error, "native"), pcall(pcall, error, 7))
-- expect: false	true	false	7
uncaught()
