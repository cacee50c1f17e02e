-- Results beyond the targets go before the targets are evaluated, whose calls use the same slots.
function several() return 1, 2, {}, "x" .. 1, {} end
function key(a, b, c) return (a or 0) .. "k" end
a = {}
a.x, a.y = several()
a[key(0, {}, {})], a[key(1, 2, 3)] = 3, several()
x, a.z = several()
print(a.x, a.y, a["1k"], x, a.z)  -- expect: 1	2	1	1	2
print(pcall(function() a.x, a[nil] = several() end))  -- expect: false	table index must be a number, string, or boolean
