-- Many short lines on standard output.
local n = tonumber(arg[1] or 200000)

for i = 1, n do
  print("line " .. i, i * 3, "end")
end
-- expect sha256: 469a683d1c714041b8512147ccb940f7e9f7f8a554eaca356ac5dd518f319a4d
-- small: 300
