-- Nested integer loops around a branch ladder. The counters stay small, so that no language leaves
-- its fast integers.
local n = tonumber(arg[1] or 3000)

local hits, above, rest = 0, 0, 0
for i = 1, n do
  for j = 1, n do
    if (i * j) % 7 == 3 then
      hits = hits + 1
    elseif i < j then
      above = above + 1
    else
      rest = rest + 1
    end
  end
end
print(hits .. " " .. above .. " " .. rest)
-- expect: 1102530 3947235 3950235
-- small: 60
