-- ".." joins the texts of any two values.
print(nil .. "x", true .. false, 1 .. 2, -1 .. "", 1.5 .. 2.0)  -- expect: nilx	truefalse	12	-1	1.52
t = {}
print(t .. "" == tostring(t), "" .. t == t .. "", type(1 .. 2))  -- expect: true	true	string
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
-- So do fields and elements that grow; what was read before they grew, or is read elsewhere, stays.
-- Whoever changes them while the right side runs is overwritten by what they were before.
long = string.rep("-", 300)
for round, key in ipairs({"name", 1, 2.0, true, -7}) do
  record, kept = {text = long .. round, [key] = long .. round}, {}
  for i = 1, 40 do
    record.text = record.text .. i .. ";"
    record[key] = record[key] .. i .. ";"
    kept[i] = record.text
    if i % 10 == 3 then record[key] = record[key] .. {} == 0 or record.text end
  end
  print(record.text == record[key], #record.text, #kept[1], #kept[39], kept[40] == record.text)
  -- expect: true	412	303	409	true
  -- expect: true	412	303	409	true
  -- expect: true	412	303	409	true
  -- expect: true	412	303	409	true
  -- expect: true	412	303	409	true
end
record.text = record.text .. record.text .. #record.text
print(record.text == kept[40] .. kept[40] .. 412)  -- expect: true
list, index = {long .. 1, long .. 2}, 1
function stepped(x) index = index + 1 return x end
list[index] = list[index] .. stepped("a")
print(#list[1], list[2] == long .. "1a")  -- expect: 301	true
function swapped(x) record, old = {text = "new"}, record return x end
record.text = long .. 3
record.text = record.text .. swapped(5)
print(record.text == long .. "35", old.text == long .. "3")  -- expect: true	true
index = long .. "i"
list = {[index] = index}
list[index] = list[index] .. "j"
print(#index, #list[index])  -- expect: 301	302
-- Parentheses around the first operands change nothing.
function fresh(x) text = "fresh" return x end
text = "old"
text = ((text .. 1 .. 2) .. fresh("f")) .. -3 .. (4 .. 5)
print(text, (nil .. true) .. (1.5 .. {1}) == nil)  -- expect: old12f-345	false
print(pcall(function() missing.text = missing.text .. "x" end))
-- expect: false	attempt to index a nil value
