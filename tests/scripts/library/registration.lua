-- The predefined globals, the members of the library tables in their order, and nothing else.
print(_VERSION, print, tostring)  -- expect: Tarvel TarvelLua	[function print]	[function tostring]
print(tonumber, type, assert, error)  -- expect: [function tonumber]	[function type]	[function assert]	[function error]
print(pcall, pairs, ipairs)  -- expect: [function pcall]	[function pairs]	[function ipairs]

function members(library)
  local text = ""
  for name, member in pairs(library) do text = text .. name .. ":" .. type(member):sub(1, 1) .. " " end
  return text .. "."
end
print(members(string))  -- expect: sub:f find:f match:f gmatch:f gsub:f format:f rep:f unpack:f .
print(members(table), members(math))  -- expect: remove:f concat:f sort:f .	min:f max:f floor:f .
print(members(io), members(os))  -- expect: open:f write:f stderr:u stdout:u .	execute:f exit:f .
print(_G, load, dofile, require, next, select, unpack, rawget)  -- expect: nil	nil	nil	nil	nil	nil	nil	nil
