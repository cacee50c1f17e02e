-- Deeply nested expressions, blocks and functions, and very long flat ones.
print(((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((42)))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))  -- expect: 42
print(- - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - -1, not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not not nil)  -- expect: -1	false
t = {{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{"core"}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}
print(t[1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1])  -- expect: core
print(t)
-- expect: {{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{core}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}

-- Functions returned by the one around them, and blocks with a local each; the innermost sees all of them.
f = function() return function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return function() return
  "innermost" end end end end end end end end end end end end end end end end end end end end end end end end end end
  end end end end
print(f()()()()()()()()()()()()()()()()()()()()()()()()()()()()()())  -- expect: innermost
function blocks(v0)
  while true do local v1 = v0 + 1 for i = 1, 1 do local v2 = v1 + 1 if true then local v3 = v2 + 1 while true do local
  v4 = v3 + 1 for i = 1, 1 do local v5 = v4 + 1 if true then local v6 = v5 + 1 while true do local v7 = v6 + 1 for i =
  1, 1 do local v8 = v7 + 1 if true then local v9 = v8 + 1 while true do local v10 = v9 + 1 for i = 1, 1 do local v11
  = v10 + 1 if true then local v12 = v11 + 1 while true do local v13 = v12 + 1 for i = 1, 1 do local v14 = v13 + 1 if
  true then local v15 = v14 + 1 while true do local v16 = v15 + 1 for i = 1, 1 do local v17 = v16 + 1 if true then
  local v18 = v17 + 1 while true do local v19 = v18 + 1 for i = 1, 1 do local v20 = v19 + 1 if true then local v21 =
  v20 + 1 while true do local v22 = v21 + 1 for i = 1, 1 do local v23 = v22 + 1 if true then local v24 = v23 + 1 while
  true do local v25 = v24 + 1 for i = 1, 1 do local v26 = v25 + 1 if true then local v27 = v26 + 1 while true do local
  v28 = v27 + 1 for i = 1, 1 do local v29 = v28 + 1 if true then local v30 = v29 + 1
  total = v1 + v15 + v30
  if total > 0 then return v0, v1, v15, v30, total end
  end end end end end end end end end end end end end end end end end end end end end end end end end end end end end
  end
end
print(blocks(100))  -- expect: 100	101	115	130	346

-- Long chains of one operator, of branches, and of fields, entries and calls.
sum = 1 + 2 + 3 + 4 + 5 + 6 + 7 + 8 + 9 + 10 + 11 + 12 + 13 + 14 + 15 + 16 + 17 + 18 + 19 + 20 + 21 + 22 + 23 + 24 +
  25 + 26 + 27 + 28 + 29 + 30 + 31 + 32 + 33 + 34 + 35 + 36 + 37 + 38 + 39 + 40 + 41 + 42 + 43 + 44 + 45 + 46 + 47 +
  48 + 49 + 50 + 51 + 52 + 53 + 54 + 55 + 56 + 57 + 58 + 59 + 60 + 61 + 62 + 63 + 64 + 65 + 66 + 67 + 68 + 69 + 70 +
  71 + 72 + 73 + 74 + 75 + 76 + 77 + 78 + 79 + 80 + 81 + 82 + 83 + 84 + 85 + 86 + 87 + 88 + 89 + 90 + 91 + 92 + 93 +
  94 + 95 + 96 + 97 + 98 + 99 + 100 + 101 + 102 + 103 + 104 + 105 + 106 + 107 + 108 + 109 + 110 + 111 + 112 + 113 +
  114 + 115 + 116 + 117 + 118 + 119 + 120 + 121 + 122 + 123 + 124 + 125 + 126 + 127 + 128 + 129 + 130 + 131 + 132 +
  133 + 134 + 135 + 136 + 137 + 138 + 139 + 140 + 141 + 142 + 143 + 144 + 145 + 146 + 147 + 148 + 149 + 150
print(sum)  -- expect: 11325
text = 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3
  .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6
  .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9
  .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2
  .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5
  .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8
  .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0
print(#text, text:sub(1, 12), text:sub(-3))  -- expect: 150	123456789012	890
function branch(n)
  if n == 0 then return "b0" elseif n == 1 then return 1 elseif n == 2 then return 2 elseif n == 3 then return 3
  elseif n == 4 then return 4 elseif n == 5 then return 5 elseif n == 6 then return 6 elseif n == 7 then return 7
  elseif n == 8 then return 8 elseif n == 9 then return 9 elseif n == 10 then return 10 elseif n == 11 then return 11
  elseif n == 12 then return 12 elseif n == 13 then return 13 elseif n == 14 then return 14 elseif n == 15 then return
  15 elseif n == 16 then return 16 elseif n == 17 then return 17 elseif n == 18 then return 18 elseif n == 19 then
  return 19 elseif n == 20 then return 20 elseif n == 21 then return 21 elseif n == 22 then return 22 elseif n == 23
  then return 23 elseif n == 24 then return 24 elseif n == 25 then return 25 elseif n == 26 then return 26 elseif n ==
  27 then return 27 elseif n == 28 then return 28 elseif n == 29 then return 29 elseif n == 30 then return 30 elseif n
  == 31 then return 31 elseif n == 32 then return 32 elseif n == 33 then return 33 elseif n == 34 then return 34
  elseif n == 35 then return 35 elseif n == 36 then return 36 elseif n == 37 then return 37 elseif n == 38 then return
  38 elseif n == 39 then return 39 elseif n == 40 then return 40 else return "else" end
end
print(branch(0), branch(31), branch(40), branch(41))  -- expect: b0	31	40	else
node = {value = "reached"}
node.next = node
function node.get() return node end
print(node.next.next.next.next.next.next.next.next.next.next.next.next.next.next.next.get().get().get().get().get()["next"]["next"]["next"]["next"]["next"].value)  -- expect: reached
node.next = nil
node.get = nil
