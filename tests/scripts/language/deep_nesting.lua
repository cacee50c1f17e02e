-- Deeply nested expressions, blocks and functions, and very long flat ones.
print(((((((((((((((((((((((((((((((((((((((((((((((((((((((((((((
  42
)))))))))))))))))))))))))))))))))))))))))))))))))))))))))))))  -- expect: 42
print(- - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - - 1, not not not not not not not not not not not not not not not not not not not not nil)  -- expect: -1	false
t = {{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{"core"}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}
print(t[1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1][1])  -- expect: core
print(t)
-- expect: {{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{{core}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}}

-- Fifty functions, each returned by the one around it.
f = function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  function() return function() return function() return function() return function() return
  "innermost" end end end end end end end end end end end end end end end end end end end end end
  end end end end end end end end end end end end end end end end end end end end end end end end
  end end end end end
print(f()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()()())  -- expect: innermost

-- Forty blocks with a local each; the innermost sees all of them.
function blocks(v0)
while true do local v1 = v0 + 1
for i = 1, 1 do local v2 = v1 + 1
if true then local v3 = v2 + 1
while true do local v4 = v3 + 1
for i = 1, 1 do local v5 = v4 + 1
if true then local v6 = v5 + 1
while true do local v7 = v6 + 1
for i = 1, 1 do local v8 = v7 + 1
if true then local v9 = v8 + 1
while true do local v10 = v9 + 1
for i = 1, 1 do local v11 = v10 + 1
if true then local v12 = v11 + 1
while true do local v13 = v12 + 1
for i = 1, 1 do local v14 = v13 + 1
if true then local v15 = v14 + 1
while true do local v16 = v15 + 1
for i = 1, 1 do local v17 = v16 + 1
if true then local v18 = v17 + 1
while true do local v19 = v18 + 1
for i = 1, 1 do local v20 = v19 + 1
if true then local v21 = v20 + 1
while true do local v22 = v21 + 1
for i = 1, 1 do local v23 = v22 + 1
if true then local v24 = v23 + 1
while true do local v25 = v24 + 1
for i = 1, 1 do local v26 = v25 + 1
if true then local v27 = v26 + 1
while true do local v28 = v27 + 1
for i = 1, 1 do local v29 = v28 + 1
if true then local v30 = v29 + 1
while true do local v31 = v30 + 1
for i = 1, 1 do local v32 = v31 + 1
if true then local v33 = v32 + 1
while true do local v34 = v33 + 1
for i = 1, 1 do local v35 = v34 + 1
if true then local v36 = v35 + 1
while true do local v37 = v36 + 1
for i = 1, 1 do local v38 = v37 + 1
if true then local v39 = v38 + 1
while true do local v40 = v39 + 1
total = v1 + v20 + v40
if total > 0 then return v0, v1, v20, v40, total end
end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end end
print(blocks(0))  -- expect: 0	1	20	40	61
print(blocks(100))  -- expect: 100	101	120	140	361

-- Long chains of one operator.
sum = 1 + 2 + 3 + 4 + 5 + 6 + 7 + 8 + 9 + 10 + 11 + 12 + 13 + 14 + 15 + 16 + 17 + 18 + 19 + 20 +
  21 + 22 + 23 + 24 + 25 + 26 + 27 + 28 + 29 + 30 + 31 + 32 + 33 + 34 + 35 + 36 + 37 + 38 + 39 +
  40 + 41 + 42 + 43 + 44 + 45 + 46 + 47 + 48 + 49 + 50 + 51 + 52 + 53 + 54 + 55 + 56 + 57 + 58 +
  59 + 60 + 61 + 62 + 63 + 64 + 65 + 66 + 67 + 68 + 69 + 70 + 71 + 72 + 73 + 74 + 75 + 76 + 77 +
  78 + 79 + 80 + 81 + 82 + 83 + 84 + 85 + 86 + 87 + 88 + 89 + 90 + 91 + 92 + 93 + 94 + 95 + 96 +
  97 + 98 + 99 + 100 + 101 + 102 + 103 + 104 + 105 + 106 + 107 + 108 + 109 + 110 + 111 + 112 + 113
  + 114 + 115 + 116 + 117 + 118 + 119 + 120 + 121 + 122 + 123 + 124 + 125 + 126 + 127 + 128 + 129
  + 130 + 131 + 132 + 133 + 134 + 135 + 136 + 137 + 138 + 139 + 140 + 141 + 142 + 143 + 144 + 145
  + 146 + 147 + 148 + 149 + 150 + 151 + 152 + 153 + 154 + 155 + 156 + 157 + 158 + 159 + 160 + 161
  + 162 + 163 + 164 + 165 + 166 + 167 + 168 + 169 + 170 + 171 + 172 + 173 + 174 + 175 + 176 + 177
  + 178 + 179 + 180 + 181 + 182 + 183 + 184 + 185 + 186 + 187 + 188 + 189 + 190 + 191 + 192 + 193
  + 194 + 195 + 196 + 197 + 198 + 199 + 200
print(sum)  -- expect: 20100
text = 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9
  .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8
  .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7
  .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6
  .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5
  .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4
  .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3
  .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0 .. 1 .. 2 .. 3 .. 4 .. 5 .. 6 .. 7 .. 8 .. 9 .. 0
print(#text, text:sub(1, 12), text:sub(-3))  -- expect: 150	123456789012	890
choice = nil or false or nil or false or nil or false or nil or false or nil or false or nil or
  false or nil or false or nil or false or nil or false or nil or false or nil or false or nil or
  false or nil or false or nil or false or nil or false or nil or false or nil or false or nil or
  false or nil or false or nil or false or nil or false or nil or false or nil or false or nil or
  false or nil or false or nil or false or nil or false or nil or false or nil or false or nil or
  false or nil or false or nil or false or nil or false or nil or false or nil or false or nil or
  false or nil or false or nil or false or nil or false or nil or false or "last"
print(choice)  -- expect: last
both = 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and
  1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1
  and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and
  "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x"
  and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and
  true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true and 1 and "x" and true
  and "end"
print(both)  -- expect: end

-- Sixty branches.
function branch(n)
  if n == 0 then return "b0"
  elseif n == 1 then return "b1" elseif n == 2 then return "b2" elseif n == 3 then return "b3"
  elseif n == 4 then return "b4" elseif n == 5 then return "b5" elseif n == 6 then return "b6"
  elseif n == 7 then return "b7" elseif n == 8 then return "b8" elseif n == 9 then return "b9"
  elseif n == 10 then return "b10" elseif n == 11 then return "b11" elseif n == 12 then return "b12"
  elseif n == 13 then return "b13" elseif n == 14 then return "b14" elseif n == 15 then return "b15"
  elseif n == 16 then return "b16" elseif n == 17 then return "b17" elseif n == 18 then return "b18"
  elseif n == 19 then return "b19" elseif n == 20 then return "b20" elseif n == 21 then return "b21"
  elseif n == 22 then return "b22" elseif n == 23 then return "b23" elseif n == 24 then return "b24"
  elseif n == 25 then return "b25" elseif n == 26 then return "b26" elseif n == 27 then return "b27"
  elseif n == 28 then return "b28" elseif n == 29 then return "b29" elseif n == 30 then return "b30"
  elseif n == 31 then return "b31" elseif n == 32 then return "b32" elseif n == 33 then return "b33"
  elseif n == 34 then return "b34" elseif n == 35 then return "b35" elseif n == 36 then return "b36"
  elseif n == 37 then return "b37" elseif n == 38 then return "b38" elseif n == 39 then return "b39"
  elseif n == 40 then return "b40" elseif n == 41 then return "b41" elseif n == 42 then return "b42"
  elseif n == 43 then return "b43" elseif n == 44 then return "b44" elseif n == 45 then return "b45"
  elseif n == 46 then return "b46" elseif n == 47 then return "b47" elseif n == 48 then return "b48"
  elseif n == 49 then return "b49" elseif n == 50 then return "b50" elseif n == 51 then return "b51"
  elseif n == 52 then return "b52" elseif n == 53 then return "b53" elseif n == 54 then return "b54"
  elseif n == 55 then return "b55" elseif n == 56 then return "b56" elseif n == 57 then return "b57"
  elseif n == 58 then return "b58" elseif n == 59 then return "b59"
  else return "else" end
end
print(branch(0), branch(31), branch(59), branch(60))  -- expect: b0	b31	b59	else

-- A long chain of fields, entries and calls.
node = {value = "reached"}
node.next = node
function node.get() return node end
print(node.next.next.next.next.next.next.next.next.next.next.next.next.next.next.next.get().get().get().get().get()["next"]["next"]["next"]["next"]["next"].value)  -- expect: reached
node.next = nil
node.get = nil
