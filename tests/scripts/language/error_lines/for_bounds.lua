-- Bounds of the wrong kind are the loop's error, failing bound expressions have their own line.
print(pcall(function() for i = 1, #nil do end end))  -- expect: false	length operator expects a string or table
for i =  -- expect error: numeric for loop expects numeric bounds
    1,
    "10" do
  print("never")
end
