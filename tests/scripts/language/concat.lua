-- ".." joins the texts of any two values.
print("a" .. "b", "" .. "", "x" .. "")  -- expect: ab		x
print(nil .. "x", "x" .. nil, nil .. nil)  -- expect: nilx	xnil	nilnil
print(true .. false, true .. "", 1 .. true)  -- expect: truefalse	true	1true
print(1 .. 2, 1 .. "", -1 .. "", 1.5 .. "", 2.0 .. "")  -- expect: 12	1	-1	1.5	2
print(1 / 3 .. "", 1000000.0 .. "", 0 / -1 .. "")  -- expect: 0.333333	1e+06	-0
print(9223372036854775807 .. "", 100 .. "%")  -- expect: 9223372036854775807	100%

-- Numbers become strings for good.
n = 1 .. 2
print(type(n), n == "12", n == 12)  -- expect: string	true	false

-- Functions by name, tables by address.
function named() end
print(named .. "!", print .. "", function() end .. "")  -- expect: function: named!	function: print	function: <anonymous>
t = {}
u = {}
print(t .. "" == u .. "", t .. "" == tostring(t), "" .. t == t .. "")  -- expect: false	true	true

-- Right associative, left operand first.
function note(text)
  print("operand " .. text)
  return text
end
print(note("a") .. note("b") .. note("c"))
-- expect: operand a
-- expect: operand b
-- expect: operand c
-- expect: abc

-- The left operand is the value it had before the right side ran.
s = "old"
function change()
  s = "new"
  return "-changed"
end
s = s .. change()
print(s)  -- expect: old-changed
function changed(word)
  word = word .. change() .. word
  return word, s
end
print(changed("w"))  -- expect: w-changedw	new

-- Growing one string in a loop leaves earlier copies alone.
text = ""
kept = {}
for i = 1, 5 do
  text = text .. i
  kept[i] = text
end
print(text, kept[1], kept[3], kept[5])  -- expect: 12345	1	123	12345
big = ""
for i = 1, 1000 do big = big .. "xy" end
print(#big, #(big .. big), big == ("xy"):rep(1000))  -- expect: 2000	4000	true

-- A missing result is nil, further results are dropped.
function none() end
function two() return "p", "q" end
print("<" .. none() .. ">", two() .. two())  -- expect: <nil>	pp
print("a\0b" .. "c" == "a\0bc", #("a\0" .. "\0b"))  -- expect: true	4
