-- mode: container
-- Errors of a container's script name the script that was compiled, not the container.
print("before")  -- expect: before
local t
t.x = 1  -- expect error: attempt to assign into a nil value
