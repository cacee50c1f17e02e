-- expect error 4:3: break outside a loop
for i = 1, 2 do end
if x then
  break
end
