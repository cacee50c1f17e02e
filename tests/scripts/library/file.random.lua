-- args: {tmp}
-- A file does what a string and a position do, however its buffers are filled and emptied.
seed = 11
function random(limit)
  seed = seed * 16807 % 2147483647
  return seed % limit
end
local piece = string.rep("0123456789abcdef", 8192)

for round = 1, 12 do
  local path = arg[1] .. "/file" .. round
  local appends = round % 2 == 0
  local f, content, position = io.open(path, appends and "ra" or "rw"), "", 0
  for step = 1, 150 do
    -- Mostly small steps, now and then one around the buffers' size of 32768 or beyond it.
    local size, action, base = random(500), random(4), random(3)
    if random(8) == 0 then size = random(3 * 32768) end
    if action == 0 then
      local text = content:sub(position + 1, position + size)
      local read = f:read(size)
      if position >= #content then text = nil end
      if read ~= text then print(round, step, "reads", read and #read, text and #text) end
      position = position + #(text or "")
    elseif action == 1 and size > 0 then
      local text = piece:sub(step, step + size - 1)
      if appends then position = #content end
      if #content < position then content = content .. string.rep("\0", position - #content) end
      f:write(text)
      content = content:sub(1, position) .. text .. content:sub(position + size + 1)
      position = position + size
    elseif action > 1 then
      if random(2) == 0 then size = -size end
      local target = ({0, position, #content})[base + 1] + size
      local ok, reached = pcall(f.seek, f, ({"set", "cur", "end"})[base + 1], size)
      if ok ~= (target >= 0) or ok and reached ~= target then print(round, step, "seeks", reached, target) end
      if ok then position = target end
    end
  end
  f:close()
  if io.open(path):read("*a") ~= content then print(round, "holds something else") end
end

-- A named pipe that is open in both directions has no position: what was read ahead must survive a write.
os.execute("mkfifo " .. arg[1] .. "/pipe")
local pipe = io.open(arg[1] .. "/pipe", "rw")
print(pipe:write("abc"):read(1), pipe:write("def"):read(5), pcall(pipe.seek, pipe))  -- expect: a	bcdef	false	seek failed
