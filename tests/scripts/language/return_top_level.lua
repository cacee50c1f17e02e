-- A return in the main chunk ends the run with success, whatever it returns.
print("before")  -- expect: before
for i = 1, 3 do
  if i == 2 then
    return i, {nested = {1, 2}}, print
  end
  print("iteration", i)  -- expect: iteration	1
end
print("never")
error("never")
