-- How operators of different levels combine.
print(2 * 3 + 1, 10 - 4 / 2, 10 - 3 - 2, 10 - (3 - 2), 100 / 10 / 2)  -- expect: 7	8	5	9	5
print(-2 * 3, 2 * -3, - -2 + 1, not 1 == 2, not not 1 == true)  -- expect: -6	-6	3	false	true

-- + and - share one level with "..": everything to the left of ".." is taken first, and the right operand of ".."
-- extends over all that follows on that level.
print(1 + 2 .. 3 + 4, "a" .. 1 - 2, 2 * 3 .. 4 * 5, 1 .. 2 + 3 .. 4)  -- expect: 37	a-1	620	154

-- Comparisons below that, then and, then or.
print(1 + 1 < 3 and 2 or 3, 1 > 2 and 4 or 5 + 1, 1 or nil and nil, nil and 1 or 2)  -- expect: 2	6	1	2
print(false == false == false, 1 ~= 2 == true, 1 .. 2 == "12")  -- expect: false	true	true

-- Suffixes bind tighter than unary operators; literals take them like any other primary.
t = {x = {y = 3}, 4, 5}
function t:count() return 7 end
print(-t.x.y, #t + t[1], -t:count() + 1, not t.z)  -- expect: -3	6	-6	true
print({5, 6}[2], "ab":rep(3), #"ab":rep(4), function() return 1 end())  -- expect: 6	ababab	8	1
