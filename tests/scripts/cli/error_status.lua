-- A failing script keeps what it printed and reports path, line and message on standard error.
print("one")  -- expect: one
for i = 1, 2 do print("two", i) end
-- expect: two	1
-- expect: two	2
error("two words, (brackets) and 100%")  -- expect error: two words, (brackets) and 100%
