-- The number ends at the first letter that is no digit.
-- expect error 3:11: expected ')' after arguments
print(0x1fg)
