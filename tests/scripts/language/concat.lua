-- ".." joins the texts of any two values.
print(nil .. "x", true .. false, 1 .. 2, -1 .. "", 1.5 .. 2.0)  -- expect: nilx	truefalse	12	-1	1.52
t = {}
print(t .. "" == tostring(t), "" .. t == t .. "", type(1 .. 2))  -- expect: true	true	string
-- Growing one string in a loop leaves earlier copies alone, whatever its length.
text, kept, sum = "", {}, 0
for i = 1, 3000 do
  text = text .. i % 10
  kept[i] = text
end
for i = 1, 3000 do sum = sum + #kept[i] end
print(sum, kept[12], kept[2999] .. 0 == text, kept[2999] == text)  -- expect: 4501500	123456789012	true	false
-- A string that was a key and grows in place is found by its new text.
counts, word = {ab = "found"}, ""
word = word .. "a"
print(counts[word])  -- expect: nil
word = word .. "b"
print(counts[word])  -- expect: found
-- The left operand is the value it had before the right side ran.
function change() before, text = text, "new" .. 1 return "-changed" end
text, n = "old", nil
text, n = text .. change(), n .. "x"
text = text .. change()
copy = text .. "!"
print(text, n, copy)  -- expect: old-changed-changed	nilx	old-changed-changed!
print(#("a" .. {} .. "b" .. {}) > 2)  -- expect: true
