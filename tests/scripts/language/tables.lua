-- Tables are shared by reference and grow in any direction.
a = {1, 2}
b = a
b[3] = 3
a.name = "shared"
print(#a, a[3], b.name, a == b)  -- expect: 3	3	shared	true

-- The keys from one on, in their order, and the sum of all values.
function order(t, from)
  local text, sum = "", 0
  for k, v in pairs(t) do
    sum = sum + v
    if k >= from then text = text .. k .. " " end
  end
  return text:sub(1, 26), sum
end

-- Forwards past every boundary, and backwards from 64, where everything is dense at once.
t = {}
for i = 1, 1000 do t[i] = i end
print(#t, order(t, 995))  -- expect: 1000	995 996 997 998 999 1000 	500500
t = {}
for i = 64, 1, -1 do t[i] = i end
print(#t, order(t, 58))  -- expect: 64	58 59 60 61 62 63 64 	2080

-- Backwards from further out the far keys keep the order in which they came; rewriting them in order brings them home.
t = {}
for i = 100, 1, -1 do t[i] = i end
print(#t, order(t, 63))  -- expect: 100	63 64 100 99 98 97 96 95 9	5050
for i = 1, 100 do t[i] = -t[i] end
print(#t, order(t, 63))  -- expect: 100	63 64 65 66 67 68 69 70 71	-5050

-- Every second key, then the gaps.
t = {}
for i = 1, 199, 2 do t[i] = i end
print(#t, order(t, 200))  -- expect: 1		10000
for i = 2, 200, 2 do t[i] = i end
print(#t, order(t, 198))  -- expect: 200	198 199 200 	20100
