-- ".." joins the texts of any two values.
print(nil .. "x", "x" .. nil, nil .. nil)  -- expect: nilx	xnil	nilnil
print(true .. false, true .. "", 1 .. true)  -- expect: truefalse	true	1true
print(1 .. 2, 1 .. "", -1 .. "", 1.5 .. "", 2.0 .. "")  -- expect: 12	1	-1	1.5	2
print(1 / 3 .. "", 1000000.0 .. "", 0 / -1 .. "")  -- expect: 0.333333	1e+06	-0

-- Numbers become strings for good.
n = 1 .. 2
print(type(n), n == "12", n == 12)  -- expect: string	true	false

t = {}
u = {}
print(t .. "" == u .. "", t .. "" == tostring(t), "" .. t == t .. "")  -- expect: false	true	true

-- The left operand is the value it had before the right side ran.
s = "old"
function change()
  s = "new"
  return "-changed"
end
s = s .. change()
print(s)  -- expect: old-changed

-- Growing one string in a loop leaves earlier copies alone.
text = ""
kept = {}
for i = 1, 5 do
  text = text .. i
  kept[i] = text
end
print(text, kept[1], kept[3], kept[5])  -- expect: 12345	1	123	12345
