-- pcall: true and the results, or false and the bare message.
print(pcall(function() end))  -- expect: true
print(pcall(function() return 1, nil, "three" end))  -- expect: true	1	nil	three
print(pcall(pcall, error, "inner"))  -- expect: true	false	inner
print(pcall(pcall))  -- expect: false	pcall expects at least 1 arguments

-- Messages carry no location, whoever raised them.
print(pcall(function() local x = nil + 1 end))  -- expect: false	operator '+' expects numbers
print(pcall(print, pairs({})))  -- expect: false	value cannot be bridged out of TarvelLua

-- The message is always a string.
ok, message = pcall(error, 12)
print(ok, message, type(message), message == "12")  -- expect: false	12	string	true
ok, message = pcall(error, {})
print(ok, type(message), message:sub(1, 9))  -- expect: false	string	table: 0x

-- What cannot be called.
print(pcall(nil))  -- expect: false	attempt to call a nil value

-- Protection covers everything that the function calls, at any depth.
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

-- Many protected failures in a row.
for i = 1, 10000 do pcall(error, "again") end
print(pcall(function() return "still fine" end))  -- expect: true	still fine

-- After all that an unprotected error is located as always.
pcall(error, "protected")
error("unprotected")  -- expect error: unprotected
