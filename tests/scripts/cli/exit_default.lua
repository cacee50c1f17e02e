-- Without a code the status is 0, also in the middle of nested calls and loops.
function leave()
  for i = 1, 3 do
    for k, v in pairs({1, 2}) do
      if v == 2 then os.exit() end
      print(i, v)
    end
  end
end
leave()
-- expect: 1	1
print("never")
error("never")
