-- The main chunk's result crosses to the host; an iterator cannot.
print("before")  -- expect: before
-- expect error bare: value cannot be bridged out of TarvelLua
return pairs({})
