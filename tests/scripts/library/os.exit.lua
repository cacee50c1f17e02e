-- os.exit(code): ends the run with that status; nothing after it runs.
print(pcall(os.exit, true))  -- expect: false	os.exit expects a numeric argument

-- Neither pcall nor a loop, a comparator or a function stops it; output before it is kept.
function leave(code)
  while true do
    for k, v in pairs({1, 2, 3}) do
      table.sort({3, 1, 2}, function(a, b)
        print("leaving")  -- expect: leaving
        os.exit(code)
      end)
      print("never")
    end
  end
end
print(pcall(pcall, leave, 5.9))
print("never")
-- expect exit: 5
