-- How operators of different levels combine.
print(1 + 2 * 3, (1 + 2) * 3, 2 * 3 + 1, 10 - 4 / 2)  -- expect: 7	9	7	8
print(10 - 3 - 2, 10 - (3 - 2), 2 - 1 + 5, 100 / 10 / 2)  -- expect: 5	9	6	5
print(-2 * 3, -(2 * 3), 2 * -3, 2 - -3, - -2 + 1)  -- expect: -6	-6	-6	5	3
print(not 1 == 2, not (1 == 2), not not 1 == true)  -- expect: false	true	true
print(#"ab" .. "cd", #("ab" .. "cd"), -1 .. "x")  -- expect: 2cd	4	-1x

-- + and - share one level with "..": everything to the left of ".." is taken first, and the
-- right operand of ".." extends over all that follows on that level.
print(1 + 2 .. 3 + 4, 1 + 2 .. "", "a" .. 1 + 2)  -- expect: 37	3	a3
print(10 - 2 .. 3 - 1, "a" .. 1 - 2, 2 * 3 .. 4 * 5)  -- expect: 82	a-1	620
print("a" .. "b" .. "c", 1 .. 2 .. 3, 1 .. 2 + 3 .. 4)  -- expect: abc	123	154
print(pcall(function() return "a" .. "b" + 1 end))  -- expect: false	operator '+' expects numbers

-- Comparisons below that, then and, then or.
print(1 + 1 < 3 and 2 or 3, 1 > 2 and 4 or 5 + 1)  -- expect: 2	6
print(false == false == false, 1 ~= 2 == true)  -- expect: false	true

-- Suffixes bind tighter than unary operators.
t = {x = {y = 3}, 4, 5}
function t:count() return 7 end
print(-t.x.y, #t + t[1], -t:count() + 1, not t.z)  -- expect: -3	6	-6	true

-- Literals take suffixes like any other primary.
print(({10, 20, 30})[2], #{1, 2, 3}, {5, 6}[2])  -- expect: 20	3	6
print(("ab"):rep(2), "ab":rep(3), #"ab":rep(4))  -- expect: abab	ababab	8
