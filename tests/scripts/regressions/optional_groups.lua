-- Hundreds of optional groups need little of the stack, and are no reason to refuse a pattern.
local first, last = string.find("ab", string.rep("(a)?", 260) .. "b")
print(first, last)
-- expect: 1	2
