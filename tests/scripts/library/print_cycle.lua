-- cyclic: the table contains itself
-- A table that contains itself ends an unprotected run without a location.
local ring = {"ring"}
ring[2] = ring
print(ring[2][2][1])  -- expect: ring
print(ring)
-- expect error bare: value cannot be bridged out of TarvelLua
