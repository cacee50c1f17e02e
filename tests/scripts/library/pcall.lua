-- pcall: true and the results, or false and the bare message.
print(pcall(function() end))  -- expect: true
print(pcall(function() return 1, nil, "three" end))  -- expect: true	1	nil	three
print(pcall(function(a, b) return b, a end, 1, 2))  -- expect: true	2	1
print(pcall(function(a, b, c) return a, b, c end, nil, "x"))  -- expect: true	nil	x	nil
print(pcall(tostring, 1.5))  -- expect: true	1.5
print(pcall(print, "printed"))
-- expect: printed
-- expect: true	nil
print(pcall(pcall, error, "inner"))  -- expect: true	false	inner
print(pcall(pcall))  -- expect: false	pcall expects at least 1 arguments
print(pcall(pcall, pcall))  -- expect: true	false	pcall expects at least 1 arguments

-- Messages carry no location, whoever raised them.
print(pcall(function() local x = nil + 1 end))  -- expect: false	operator '+' expects numbers
print(pcall(function() error("own words") end))  -- expect: false	own words
print(pcall(error, "called by pcall itself"))  -- expect: false	called by pcall itself
print(pcall(error))  -- expect: false	error
print(pcall(error, nil))  -- expect: false	nil
print(pcall(assert, false))  -- expect: false	assertion failed!
print(pcall(type))  -- expect: false	type expects 1 argument
print(pcall(tonumber, "1", {}))  -- expect: false	tonumber expects a numeric argument
print(pcall(print, pairs({})))  -- expect: false	value cannot be bridged out of TarvelLua

-- The message is always a string.
ok, message = pcall(error, 12)
print(ok, message, type(message), message == "12")  -- expect: false	12	string	true
ok, message = pcall(error, {})
print(ok, type(message), message:sub(1, 9))  -- expect: false	string	table: 0x
ok, message, third = pcall(error, "only", "one")
print(ok, message, third)  -- expect: false	only	nil

-- What cannot be called.
print(pcall(nil))  -- expect: false	attempt to call a nil value
print(pcall({}))  -- expect: false	attempt to call a table value
print(pcall(42, 1, 2))  -- expect: false	attempt to call a number value

-- Protection covers everything that the function calls, at any depth.
function level(n)
  if n == 0 then error("bottom") end
  level(n - 1)
  print("never")
end
print(pcall(level, 50))  -- expect: false	bottom
print(pcall(function()
  for i = 1, 3 do
    for k, v in pairs({1, 2}) do
      while true do
        if v == 2 then error("at " .. i .. " " .. k) end
        break
      end
    end
  end
end))  -- expect: false	at 1 2

-- Nested: the innermost catches, the outer ones go on.
print(pcall(function()
  local ok, message = pcall(function() error("inner") end)
  print("caught", ok, message)
  error("outer after " .. message)
end))
-- expect: caught	false	inner
-- expect: false	outer after inner
print(pcall(function()
  return pcall(function()
    return pcall(function() return nil .. 1, #nil end)
  end)
end))  -- expect: true	true	false	length operator expects a string or table
function rethrow(n)
  local ok, message = pcall(function()
    if n == 0 then error("deepest") end
    rethrow(n - 1)
  end)
  error(message .. n)
end
print(pcall(rethrow, 4))  -- expect: false	deepest01234

-- State changed before the error stays changed; later statements did not run.
state = {}
function change()
  state.before = "set"
  state.list = {1, 2}
  state.list[3] = nil + 1
  state.after = "never"
end
print(pcall(change))  -- expect: false	operator '+' expects numbers
print(state.before, #state.list, state.after)  -- expect: set	2	nil
local upvalue = "old"
print(pcall(function()
  upvalue = "new"
  error("then fails")
end))  -- expect: false	then fails
print(upvalue)  -- expect: new

-- In expressions, loops and conditions.
failures = 0
for i = 1, 10 do
  if not pcall(function() if i % 3 == 0 then error("x") end end) then failures = failures + 1 end
end
print(failures)  -- expect: 3
for i = 1, 3 do
  local ok = pcall(error)
  if not ok then break end
end
function attempt(f, default)
  local ok, value = pcall(f)
  if ok then return value end
  return default
end
print(attempt(function() return "value" end, "default"), attempt(missing, "default"))  -- expect: value	default
t = {pcall(error, "in a constructor")}
print(#t, t[1], t[2])  -- expect: 1	false	nil
print((pcall(error)) == false, pcall(error) or "or")  -- expect: true	or

-- break and return inside stay inside the function.
function leave()
  for i = 1, 3 do
    local ok, v = pcall(function()
      for j = 1, 3 do
        if j == 2 then break end
      end
      return i * 10
    end)
    if v == 20 then return ok, v, i end
  end
end
print(leave())  -- expect: true	20	2

-- Many protected failures in a row.
for i = 1, 10000 do pcall(error, "again") end
print(pcall(function() return "still fine" end))  -- expect: true	still fine

-- After all that an unprotected error is located as always.
pcall(error, "protected")
error("unprotected")  -- expect error: unprotected
