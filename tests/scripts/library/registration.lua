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
print(string.len, string.upper, string.lower, string.byte, string.char)  -- expect: nil	nil	nil	nil	nil
print(table.insert, table.unpack, table.pack, math.abs, math.sqrt, math.huge, math.pi)  -- expect: nil	nil	nil	nil	nil	nil	nil
print(io.read, io.lines, io.close, io.stdin, os.time, os.clock, os.getenv)  -- expect: nil	nil	nil	nil	nil	nil	nil

-- Libraries are ordinary tables in ordinary globals.
kept = string.format
string.format = nil
print(string.format, pcall(function() return ("x"):format() end))  -- expect: nil	false	string indexing only supports library methods
string.format = kept
math.twice = function(x) return x * 2 end
print(math.twice(21))  -- expect: 42
old = tostring
tostring = function(v) return "<" .. old(v) .. ">" end
print(tostring(1), 1 .. "")  -- expect: <1>	1
tostring = nil
print(tostring, old(2), {3} ~= nil)  -- expect: nil	2	true
_VERSION = 5
print(_VERSION)  -- expect: 5
local type = type
print(type(math), type(old))  -- expect: table	function

list = {}
table.insert(list, 1)  -- expect error: attempt to call a nil value
