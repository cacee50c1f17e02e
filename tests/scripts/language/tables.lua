-- Tables are shared by reference and grow in any direction.
a = {1, 2}
b = a
b[3] = 3
a.name = "shared"
print(#a, a[3], b.name, a == b)  -- expect: 3	3	shared	true
function fill(t, n)
  for i = 1, n do t[i] = i end
  return t
end
c = {}
print(fill(c, 3) == c, #c)  -- expect: true	3
nested = {a, a, {a}}
a[1] = "changed"
print(nested[1][1], nested[2][1], nested[3][1][1])  -- expect: changed	changed	changed

-- Rows of a matrix, made in loops.
matrix = {}
for i = 1, 3 do
  matrix[i] = {}
  for j = 1, 3 do matrix[i][j] = i * j end
end
matrix[2][2] = "middle"
print(matrix)  -- expect: {{1, 2, 3}, {2, middle, 6}, {3, 6, 9}}

function order(t, limit)
  local text = ""
  local count = 0
  for k, v in pairs(t) do
    count = count + 1
    if count <= limit then text = text .. k .. " " end
  end
  return text .. "of " .. count
end
function sum(t)
  local total = 0
  for k, v in pairs(t) do total = total + v end
  return total
end

-- Forwards, past every boundary.
t = fill({}, 1000)
print(#t, sum(t), order(t, 3))  -- expect: 1000	500500	1 2 3 of 1000

-- Backwards from 64 everything is dense at once.
t = {}
for i = 64, 1, -1 do t[i] = i end
print(#t, sum(t), order(t, 3))  -- expect: 64	2080	1 2 3 of 64

-- Backwards from further out the far keys keep the order in which they came.
t = {}
for i = 100, 1, -1 do t[i] = i end
print(#t, sum(t), t[100], t[65], t[64], t[1])  -- expect: 100	5050	100	65	64	1
text = ""
for k in pairs(t) do
  if k >= 63 then text = text .. k .. " " end
end
print(text:sub(1, 30))  -- expect: 63 64 100 99 98 97 96 95 94 93
t[101] = 101
print(#t, sum(t))  -- expect: 101	5151

-- Rewriting the far keys in order brings them home, values and count intact.
for i = 1, 101 do t[i] = -t[i] end
print(#t, sum(t), order(t, 2))  -- expect: 101	-5151	1 2 of 101
text = ""
for k in pairs(t) do
  if k >= 63 then text = text .. k .. " " end
end
print(text:sub(1, 26))  -- expect: 63 64 65 66 67 68 69 70 71
print(t[101], t[100], t[1])  -- expect: -101	-100	-1

-- Every second key, then the gaps.
t = {}
for i = 1, 199, 2 do t[i] = i end
print(#t, sum(t))  -- expect: 1	10000
for i = 2, 200, 2 do t[i] = i end
print(#t, sum(t), t[199], t[200])  -- expect: 200	20100	199	200

-- Keys from 65 on that lie more than eight past the dense end wait until it has grown over them.
t = {}
for i = 10, 200, 10 do t[i] = i end
print(order(t, 20))  -- expect: 10 20 30 40 50 60 70 80 90 100 110 120 130 140 150 160 170 180 190 200 of 20
t[68], t[71] = 68, 71
print(order(t, 10), #t)  -- expect: 10 20 30 40 50 60 68 70 71 80 of 22	0
