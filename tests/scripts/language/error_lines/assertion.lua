-- A failed assertion without a message.
assert(1 == 1)
assert(
  true
)
if true then
  assert  -- expect error: assertion failed!
    (1 == 2)
end
