-- Kind checks: no conversion between strings and numbers, floats are truncated to integers.
print(pcall(string.rep, "a", "x"))  -- expect: false	string.rep expects a numeric argument
print(pcall(string.rep, "a", "3"))  -- expect: false	string.rep expects a numeric argument
print(pcall(string.rep, "a", nil))  -- expect: false	string.rep expects a numeric argument
print(pcall(string.rep, 1, 2))  -- expect: false	string.rep expects a string argument
print(string.rep("a", 2.7), string.rep("a", 3.0), "[" .. string.rep("a", 0.9) .. "]")  -- expect: aa	aaa	[]
print(pcall(string.sub, 12, 1))  -- expect: false	string.sub expects a string argument
print(pcall(string.sub, "abc", "1"))  -- expect: false	string.sub expects a numeric argument
print(pcall(string.sub, "abc", {}))  -- expect: false	string.sub expects a numeric argument
print(string.sub("abcdef", 2.9, 4.1), string.sub("abcdef", -2.9))  -- expect: bcd	ef
print(pcall(math.floor, "1.5"))  -- expect: false	math.floor expects a numeric argument
print(pcall(math.min, 1, "2"))  -- expect: false	math.min expects a numeric argument
print(pcall(math.max, 1, nil))  -- expect: false	math.max expects a numeric argument
print(pcall(table.concat, "abc"))  -- expect: false	table.concat expects a table
print(pcall(table.sort, nil))  -- expect: false	table.sort expects a table
print(pcall(table.remove, 5))  -- expect: false	table.remove expects a table
print(pcall(io.open, 5))  -- expect: false	io.open expects a string argument
print(pcall(os.execute, 5))  -- expect: false	os.execute expects a string argument
print(pcall(os.exit, true))  -- expect: false	os.exit expects a numeric argument
print(pcall(os.exit, "1"))  -- expect: false	os.exit expects a numeric argument
print(pcall(io.stdout.write, 1, "x"))  -- expect: false	stream:write expects userdata
print(pcall(io.stdout.close, {}))  -- expect: false	file:close expects userdata
print(pcall(function() io.stdout:close() end))  -- expect: false	file:close received the wrong userdata type
print(pcall(function() io.stderr:read("*a") end))  -- expect: false	file:read received the wrong userdata type

-- These errors have the line of the call.
function repeated(n)
  return string  -- expect error: string.rep expects a numeric argument
    .rep("x",
      n)
end
print(repeated(2))  -- expect: xx
print(repeated("2"))
