-- Scopes, argument lists and results around the sizes that are held without a heap block.
function nine(a)
  local b, c, d, e, f, g, h, i = 2, 3, 4, 5, 6, 7, 8, 9
  return (function() i = i + 1 return a + b + c + d + e + f + g + h + i end)(), i
end
print(nine(1))  -- expect: 46	10

-- Many results travel through several calls, truncated only where a list goes on.
function seven(a, b, c, d, e, f, g) return g, f, e, d, c, b, a end
function results() return 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20 end
function further() return 0, (function() return results() end)() end
print(seven(1, 2, 3))  -- expect: nil	nil	nil	nil	3	2	1
print(seven("x", results()))  -- expect: 6	5	4	3	2	1	x
print(pcall(further))  -- expect: true	0	1	2	3	4	5	6	7	8	9	10	11	12	13	14	15	16	17	18	19	20
first, second, third = further()
print(first, second, third)  -- expect: 0	1	2
