-- A function is identified by the name it was declared under.
function plain() end
print(tostring(plain), plain .. "")  -- expect: function: plain	function: plain
a = {b = {}}
function a.f() end
function a.b.c() end
function a.b:m() end
function a:m() end
print(tostring(a.f), tostring(a.b.c))  -- expect: function: a.f	function: a.b.c
print(tostring(a.b.m), tostring(a.m))  -- expect: function: a.b:m	function: a:m
print(plain, a.f, a.b.c, a.b.m)  -- expect: [function plain]	[function a.f]	[function a.b.c]	[function a.b:m]

-- The name stays with the function, whatever holds it.
other = plain
a.g = plain
print(other, tostring(a.g))  -- expect: [function plain]	function: plain

-- Expressions are anonymous, also when assigned at once.
g = function() end
t = {h = function() end}
print(tostring(g), g)  -- expect: function: <anonymous>	[function <anonymous>]
print(tostring(t.h), tostring(function() end))  -- expect: function: <anonymous>	function: <anonymous>
function inner() return function() end end
print(inner())  -- expect: [function <anonymous>]

-- A local declaration.
function localName()
  local function hidden() end
  local text = tostring(hidden)
  hidden = nil
  return text
end
print(localName())  -- expect: function: hidden

-- Natives: globals by their name, library members by the member's name alone.
print(tostring(print), tostring(pcall), tostring(tostring))  -- expect: function: print	function: pcall	function: tostring
print(tostring(string.sub), ("").rep, table.concat, math.floor)  -- expect: function: sub	[function rep]	[function concat]	[function floor]
print(os.exit, io.open, error)  -- expect: [function exit]	[function open]	[function error]
mine = print
print(mine)  -- expect: [function print]

-- Messages do not name functions, only kinds.
print(pcall(function() return plain.x end))  -- expect: false	attempt to index a function value
print({plain, g, print})  -- expect: {[function plain], [function <anonymous>], [function print]}
print({f = plain, [1] = a.b.m})  -- expect: {1: [function a.b:m], f: [function plain]}
