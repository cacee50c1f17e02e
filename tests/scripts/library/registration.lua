-- The predefined globals, the members of the library tables in their order, and nothing else.
print(_VERSION, #_VERSION)  -- expect: Tarvel TarvelLua	16
print(print, tostring, tonumber, type)  -- expect: [function print]	[function tostring]	[function tonumber]	[function type]
print(assert, error, pcall, pairs, ipairs)  -- expect: [function assert]	[function error]	[function pcall]	[function pairs]	[function ipairs]

function members(library)
  local text = ""
  for name, member in pairs(library) do text = text .. name .. ":" .. type(member) .. " " end
  return "[" .. text .. "]"
end
print(members(string))
-- expect: [sub:function find:function match:function gmatch:function gsub:function format:function rep:function unpack:function ]
print(members(table))  -- expect: [remove:function concat:function sort:function ]
print(members(math))  -- expect: [min:function max:function floor:function ]
print(members(io))  -- expect: [open:function write:function stderr:userdata stdout:userdata ]
print(members(os))  -- expect: [execute:function exit:function ]

print(_G, _ENV, load, loadstring, dofile, require, module)  -- expect: nil	nil	nil	nil	nil	nil	nil
print(next, select, unpack, rawget, rawset, rawequal, rawlen)  -- expect: nil	nil	nil	nil	nil	nil	nil
print(getmetatable, setmetatable, xpcall, collectgarbage)  -- expect: nil	nil	nil	nil
print(coroutine, debug, utf8, package, bit32, self)  -- expect: nil	nil	nil	nil	nil	nil

-- Libraries are ordinary tables in ordinary globals.
old = tostring
tostring = function(v) return "<" .. old(v) .. ">" end
print(tostring(1), 1 .. "")  -- expect: <1>	1

list = {}
table.insert(list, 1)  -- expect error: attempt to call a nil value
