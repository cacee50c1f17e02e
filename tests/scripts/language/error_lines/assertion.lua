-- A failed assertion without a message.
if assert(true) then
  assert  -- expect error: assertion failed!
    (1 == 2)
end
