-- Bounds of the wrong kind are the loop's error, failing bound expressions have their own line.
for i =  -- expect error: numeric for loop expects numeric bounds
    1,
    "10" do
  print("never")
end
