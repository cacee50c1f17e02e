-- os.exit passes through every pcall and every loop, and nothing runs after it.
-- expect exit: 7
function leave(code)
  for i = 1, 3 do
    while true do
      local kept = {code}
      pcall(os.exit, kept[1])
    end
  end
end
print("before")  -- expect: before
print(pcall(function()
  print(pcall(function()
    leave(7)
    print("never")
  end))
  print("never")
end))
print("never")
