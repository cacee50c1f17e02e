-- The line is the one that failed, through any number of calls, loops and blocks.
function inner(list)
  for i, v in ipairs(list) do
    if v > 1 then
      return v
        + nothing  -- expect error: operator '+' expects numbers
    end
  end
end
function outer(list)
  while true do
    return 1 + inner(
      list)
  end
end
print((function()
  return outer({1, 2})
end)())
