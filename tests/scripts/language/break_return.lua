-- break and return, out of blocks and loops. Statements after them never run.
while true do break; print("never") end
while 0 do
  if true then break print("never") else print("no") end
end
-- In bodies that make functions, and in functions made in loops.
made = {}
for i = 1, 5 do
  local square = i * i
  made[i] = function()
    for j = 1, 10 do
      if j > 2 then break end
      square = square + j
    end
    return square
  end
  if i == 3 then break end
end
print(#made, made[3](), made[3](), made[1](), made[4])  -- expect: 3	12	15	4	nil
function nested(n)
  if n == 1 then return "if" print("never") elseif n == 2 then return "elseif" else
    for i = 1, 10 do
      while true do
        for k, v in pairs({10, 20, 30}) do
          if i == 2 and k == n then return i, k, v end
        end
        break
      end
    end
    return
  end
end
print(nested(1), nested(2), nested(3))  -- expect: if	elseif	2	3	30
print(nested(4), "only one value")  -- expect: nil	only one value
-- Values on their way out stand where later locals would live.
function early(x)
  if x == nil then return nil, "missing" end
  local parts, text = {x}, x .. "!"
  return parts, text
end
function inner(x)
  while true do
    if x then return {1}, "two" end
    local a, b = {}, {}
    return a, b
  end
end
print(early(nil))  -- expect: nil	missing
print(inner(true))  -- expect: {1}	two
function bare(n) if n == 1 then return elseif n == 2 then return else return 3 end end
print(bare(1), bare(2), bare(3))  -- expect: nil	nil	3
-- Several values may stand below the slots of locals that were not declared yet.
function undeclared(done)
  if true then
    if done then return 1, 2 end
    local number = 1
    local owner = {}
  end
end
print(undeclared(true))  -- expect: 1	2
-- Without a separator the next line belongs to the return; the main chunk's result crosses to the host.
if true then
  return
    pairs({})  -- expect error bare: value cannot be bridged out of TarvelLua
end
error("never")
