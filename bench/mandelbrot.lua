-- Escape times over the Mandelbrot set: floating-point arithmetic on locals.
local n = tonumber(arg[1] or 320)

local width, height, limit = n, 240, 100
local total, inside = 0, 0
for row = 0, height - 1 do
  local cy = row * 2 / height - 1
  for column = 0, width - 1 do
    local cx = column * 3 / width - 2
    local x, y, xx, yy = 0, 0, 0, 0
    local steps = 0
    while steps < limit and xx + yy <= 4 do
      y = 2 * x * y + cy
      x = xx - yy + cx
      xx = x * x
      yy = y * y
      steps = steps + 1
    end
    total = total + steps
    if steps == limit then
      inside = inside + 1
    end
  end
end
print(total .. " " .. inside)
-- expect: 2333690 19869
-- small: 4
