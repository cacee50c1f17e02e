-- A function inside a loop is not part of the loop.
-- expect error 4:24: break outside a loop
while true do
  local f = function() break end
end
