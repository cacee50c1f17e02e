-- A tab counts as one column.
-- expect error 3:6: unexpected character '!'
if a	!= b then end
