-- Greets the world, or whoever is named on the command line:
--
--   tarvellua examples/hello.lua
--   tarvellua examples/hello.lua Ada
--
-- expect: Hello, world!

-- `arg` holds the words after the script's name. Without any, arg[1] is nil, which counts as false,
-- so that `or` picks its right side.
local name = arg[1] or "world"
print("Hello, " .. name .. "!")
