-- A function is identified by the name it was declared under.
function plain() end
a = {b = {}}
function a.f() end
function a.b.c() end
function a.b:m() end
function a:m() end
print(tostring(a.f), tostring(a.b.c))  -- expect: function: a.f	function: a.b.c
print(plain, a.f, a.b.c, a.b.m)  -- expect: [function plain]	[function a.f]	[function a.b.c]	[function a.b:m]

-- The name stays with the function, whatever holds it.
other = plain
a.g = plain
print(other, tostring(a.g))  -- expect: [function plain]	function: plain

-- Expressions are anonymous, also when assigned at once.
g = function() end
print(tostring(g), g)  -- expect: function: <anonymous>	[function <anonymous>]

-- Natives: globals by their name, library members by the member's name alone.
print(tostring(print), tostring(pcall), tostring(tostring))  -- expect: function: print	function: pcall	function: tostring
print(tostring(string.sub), ("").rep, table.concat, math.floor)  -- expect: function: sub	[function rep]	[function concat]	[function floor]
